// UTF-8 character by character, of any bytes. Everything that knows how characters lie in bytes stands here.
//
//     for (std::string_view rest = text; !rest.empty();) {
//         const Character character = takeFirst(rest);
//     }
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host::text {

inline bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

// Any byte of a character but its first.
inline bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// How many bytes the character has that begins with this one; 0: none does (RFC 3629, section 3).
inline std::size_t sizeFrom(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (isAscii(first)) {
        return 1;
    }
    if (byte < 0xC2 || byte > 0xF4) {
        return 0;
    }
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

struct Character {
    std::int32_t codePoint = -1; // -1: the byte there is not UTF-8
    std::size_t size = 0;        // in bytes: 0 when there is no text, 1 for a byte that is not UTF-8
};

// firstCharacter for texts that begin with neither ASCII nor a whole character of two bytes.
Character firstOfOthers(std::string_view text);

// The character at the front of text.
inline Character firstCharacter(std::string_view text) {
    if (!text.empty() && isAscii(text.front())) {
        return {text.front(), 1};
    }
    if (text.size() > 1 && sizeFrom(text.front()) == 2 && isContinuation(text[1])) {
        return {(text.front() & 0x1F) << 6 | (text[1] & 0x3F), 2}; // as nearly all that European names have
    }
    return firstOfOthers(text);
}

// Whether all of text is UTF-8.
bool isUtf8(std::string_view text);

// The character at the end of text.
Character lastCharacter(std::string_view text);

// Takes the first character away from text.
inline Character takeFirst(std::string_view& text) {
    const Character character = firstCharacter(text);
    text.remove_prefix(character.size);
    return character;
}

} // namespace host::text
