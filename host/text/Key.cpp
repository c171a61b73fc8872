#include "host/text/Key.h"

#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>

namespace host::text {

namespace {

bool isKeypadByte(char byte) {
    return (byte >= '0' && byte <= '9') || byte == '*' || byte == '#';
}

// What each byte of ASCII gives to a keypad form; 0: nothing.
constexpr std::array<char, 0x80> keypadOfAscii = [] {
    constexpr std::string_view ofLetters = "22233344455566677778889999"; // of a to z
    std::array<char, 0x80> keys{};
    for (std::size_t i = 0; i < ofLetters.size(); ++i) {
        keys['a' + i] = ofLetters[i];
        keys['A' + i] = ofLetters[i];
    }
    for (const char byte : std::string_view("0123456789*#")) {
        keys[static_cast<unsigned char>(byte)] = byte;
    }
    return keys;
}();

// Characters beyond ASCII, which some fold to, give nothing.
void appendKeypadOfAscii(std::string_view text, std::string& out) {
    std::size_t size = out.size();
    out.resize(size + text.size());
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        const char key = value < keypadOfAscii.size() ? keypadOfAscii[value] : '\0';
        out[size] = key;
        size += key != '\0' ? 1 : 0;
    }
    out.resize(size);
}

// What may stand between the digits of a number, besides blanks.
bool isSeparator(std::int32_t codePoint) {
    constexpr std::int32_t minus = 0x2212;
    constexpr std::int32_t middleDot = 0xB7;
    if (codePoint >= 0 && codePoint < 0x80) {
        return std::string_view("-.()[]{}").find(static_cast<char>(codePoint)) != std::string_view::npos;
    }
    return codePoint == minus || codePoint == middleDot || utf8proc_category(codePoint) == UTF8PROC_CATEGORY_PD;
}

struct NumberParts {
    bool international = false; // a "+" in front
    std::string digits;

    bool isFromAbroad() const { return international ? !digits.empty() : digits.starts_with("00"); }
};

// What is dialled within the country alone, as many write it behind their country code.
constexpr std::string_view leftOutFromAbroad = "(0)";

std::optional<NumberParts> numberParts(std::string_view text, std::string_view furtherSeparators) {
    NumberParts parts;
    while (!text.empty()) {
        if (parts.isFromAbroad() && text.starts_with(leftOutFromAbroad)) {
            text.remove_prefix(leftOutFromAbroad.size());
            continue;
        }
        const char first = text.front();
        const Character character = takeFirst(text);
        if (isKeypadByte(first)) {
            parts.digits += first;
        } else if (character.codePoint == '+' && parts.digits.empty() && !parts.international) {
            parts.international = true;
        } else if (character.codePoint < 0 || !(isBlank(character.codePoint) || isSeparator(character.codePoint) ||
                                                furtherSeparators.find(first) != std::string_view::npos)) {
            return std::nullopt;
        }
    }
    return parts;
}

std::size_t lengthOfUtf8(std::string_view text) {
    std::size_t length = 0;
    for (Character next = firstCharacter(text); next.codePoint >= 0; next = firstCharacter(text.substr(length))) {
        length += next.size;
    }
    return length;
}

void appendNormalized(std::string_view utf8, std::string& out) {
    constexpr auto options = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_COMPAT |
                                                            UTF8PROC_CASEFOLD | UTF8PROC_IGNORE);
    utf8proc_uint8_t* bytes = nullptr;
    const auto size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
                                   static_cast<utf8proc_ssize_t>(utf8.size()), &bytes, options);
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(bytes, &std::free);
    if (size < 0) {
        throw std::bad_alloc();
    }
    out.append(bytes, bytes + size);
}

std::string normalized(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        return folded(text); // case is all that there is to fold
    }
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = lengthOfUtf8(text);
        if (length > 0) {
            appendNormalized(text.substr(0, length), out);
        } else {
            out += text.front();
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

std::string convertOnce(std::string_view typed) {
    const std::string whole = normalized(typed);
    const std::string_view key = trimBlanks(whole);
    if (auto digits = plainNumber(key)) {
        return *std::move(digits);
    }
    return std::string(key);
}

} // namespace

std::string convertKey(std::string_view typed) {
    std::string key = convertOnce(typed);
    // Trimming and letting go of invisible characters can bring characters together that compose once more.
    for (std::string next = convertOnce(key); next != key; next = convertOnce(key)) {
        key = std::move(next);
    }
    return key;
}

bool isKeypadKey(std::string_view key) {
    return !key.empty() && std::all_of(key.begin(), key.end(), isKeypadByte);
}

std::optional<std::string> plainNumber(std::string_view text) {
    auto parts = numberParts(text, {});
    if (!parts || parts->digits.empty()) {
        return std::nullopt;
    }
    return std::move(parts->digits);
}

std::optional<std::string> dialableNumber(std::string_view text) {
    auto parts = numberParts(folded(text), "/");
    if (!parts || (parts->international && parts->digits.empty())) {
        return std::nullopt;
    }
    return parts->international ? "+" + parts->digits : std::move(parts->digits);
}

void appendKeypadForm(std::string_view name, std::string& out) {
    while (!name.empty()) {
        const auto plainEnd = std::find_if_not(name.begin(), name.end(), isAscii);
        appendKeypadOfAscii({name.begin(), plainEnd}, out);
        const auto otherEnd = std::find_if(plainEnd, name.end(), isAscii);
        if (plainEnd != otherEnd) {
            appendKeypadOfAscii(folded({plainEnd, otherEnd}), out);
        }
        name = {otherEnd, name.end()};
    }
}

} // namespace host::text
