// Texts and numbers one behind the other in one piece of memory: written once, and taken again in the same order. A
// number takes as many bytes as it needs, one for what is small.
//
//     packText(bytes, name);
//     packNumber(bytes, -5);
//     PackedText from(bytes);
//     name = from.text();
//     minusFive = from.number();
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

// Seven bits a byte, the low ones first; the high bit says that more follow.
inline void packSize(std::string& bytes, std::size_t size) {
    for (; size >= 0x80; size >>= 7U) {
        bytes += static_cast<char>((size & 0x7FU) | 0x80U);
    }
    bytes += static_cast<char>(size);
}

// The sign in the lowest bit, so that what is near 0 is small.
inline void packNumber(std::string& bytes, int number) {
    const auto bits = static_cast<std::uint32_t>(number);
    packSize(bytes, (bits << 1U) ^ (number < 0 ? ~0U : 0U));
}

inline void packText(std::string& bytes, std::string_view text) {
    packSize(bytes, text.size());
    bytes.append(text);
}

class PackedText {
public:
    // bytes must outlive what is taken of them.
    explicit PackedText(std::string_view bytes) : m_next(bytes.data()) {}

    std::size_t size() {
        const auto first = static_cast<unsigned char>(*m_next++);
        return first < 0x80 ? first : largeSize(first);
    }

    int number() {
        const auto bits = static_cast<std::uint32_t>(size());
        return static_cast<int>((bits >> 1U) ^ ((bits & 1U) != 0 ? ~0U : 0U));
    }

    // The next so many bytes, and those of the next text.
    std::string_view bytes(std::size_t size) {
        const std::string_view taken(m_next, size);
        m_next += size;
        return taken;
    }
    std::string_view text() { return bytes(size()); }

private:
    std::size_t largeSize(unsigned char byte) {
        std::size_t size = byte & 0x7FU;
        for (unsigned shift = 7; byte >= 0x80; shift += 7) {
            byte = static_cast<unsigned char>(*m_next++);
            size |= static_cast<std::size_t>(byte & 0x7FU) << shift;
        }
        return size;
    }

    const char* m_next;
};

} // namespace host
