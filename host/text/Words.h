// Bytes looked at eight at a time, in one word of the machine.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace host::text {

// Eight bytes; the first one is the lowest, whatever the machine's byte order.
using Word = std::uint64_t;
inline constexpr std::size_t wordSize = sizeof(Word);

// byte, eight times; it is at most 0xFF.
constexpr Word everyByte(Word byte) {
    return 0x0101010101010101U * byte;
}

inline constexpr Word highBits = everyByte(0x80);
inline constexpr Word lowBits = everyByte(0x7F);

// As many bytes as Bytes, an unsigned integer, has.
template <typename Bytes = Word> Word load(const char* bytes) {
    Bytes word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = sizeof word == wordSize ? __builtin_bswap64(word) : __builtin_bswap32(static_cast<std::uint32_t>(word));
    }
    return word;
}

// Fewer bytes than a word has; the rest of it is zero.
inline Word loadFew(const char* bytes, std::size_t size) {
    using Half = std::uint32_t;
    if (size >= sizeof(Half)) {
        const std::size_t overlapped = size - sizeof(Half);
        return load<Half>(bytes) | load<Half>(bytes + overlapped) << 8 * overlapped;
    }
    if (size == 0) {
        return 0;
    }
    const auto byteAt = [bytes](std::size_t i) { return Word(static_cast<unsigned char>(bytes[i])) << 8 * i; };
    return byteAt(0) | byteAt(size / 2) | byteAt(size - 1); // all of up to three
}

// The bytes of text from at on, zero where they are fewer than a word has. at is in text, or 0.
inline Word wordAt(std::string_view text, std::size_t at) {
    const std::size_t left = text.size() - at;
    if (left >= wordSize) {
        return load(text.data() + at);
    }
    if (text.size() >= wordSize) {
        return load(text.data() + text.size() - wordSize) >> 8 * (wordSize - left);
    }
    return loadFew(text.data() + at, left);
}

// Where the first byte stands whose high bit is set in marks, which is not 0.
inline std::size_t firstMarked(Word marks) {
    return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
}

} // namespace host::text
