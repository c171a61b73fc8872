// Texts and numbers one behind the other in one piece of memory: written once, and taken again in the same order.
//
//     packText(bytes, name);
//     packNumber(bytes, 5);
//     PackedText from(bytes);
//     name = from.text();
//     five = from.number();
#pragma once

#include <cstring>
#include <string>
#include <string_view>

namespace host {

inline void packNumber(std::string& bytes, int number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

inline void packText(std::string& bytes, std::string_view text) {
    packNumber(bytes, static_cast<int>(text.size()));
    bytes.append(text);
}

class PackedText {
public:
    // bytes must outlive what is taken of them.
    explicit PackedText(std::string_view bytes) : m_rest(bytes) {}

    int number() {
        int value = 0;
        std::memcpy(&value, m_rest.data(), sizeof value);
        m_rest.remove_prefix(sizeof value);
        return value;
    }

    std::string text() {
        const auto size = static_cast<std::size_t>(number());
        std::string value(m_rest.substr(0, size));
        m_rest.remove_prefix(size);
        return value;
    }

private:
    std::string_view m_rest;
};

} // namespace host
