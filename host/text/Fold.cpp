#include "host/text/Fold.h"

#include "host/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace host::text {

namespace {

// The letters of Latin scripts that have no decomposition although people take them for another letter with an accent.
std::string_view plainLetters(utf8proc_int32_t codePoint) {
    switch (codePoint) {
    case 0x00E6:
        return "ae";
    case 0x00F0:
        return "d";
    case 0x00F8:
        return "o";
    case 0x00FE:
        return "th";
    case 0x0111:
        return "d";
    case 0x0127:
        return "h";
    case 0x0131:
        return "i";
    case 0x0142:
        return "l";
    case 0x0153:
        return "oe";
    case 0x0167:
        return "t";
    default:
        return {};
    }
}

void appendUtf8(utf8proc_int32_t codePoint, std::string& out) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto size = utf8proc_encode_char(codePoint, bytes.data());
    out.append(bytes.begin(), bytes.begin() + size);
}

void appendFoldedCharacter(utf8proc_int32_t codePoint, std::string& out) {
    constexpr auto options = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT |
                                                            UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK | UTF8PROC_IGNORE);
    std::array<utf8proc_int32_t, 32> parts{}; // the longest decomposition in Unicode has 18
    const auto count = utf8proc_decompose_char(codePoint, parts.data(), parts.size(), options, nullptr);
    if (count < 0 || static_cast<std::size_t>(count) > parts.size()) {
        appendUtf8(codePoint, out);
        return;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const std::string_view plain = plainLetters(parts[i]);
        if (plain.empty()) {
            appendUtf8(parts[i], out);
        } else {
            out += plain;
        }
    }
}

// The folded forms of the characters that take two bytes.
class TwoByteFolds {
public:
    TwoByteFolds() {
        std::string form;
        for (std::size_t i = 0; i < m_forms.size(); ++i) {
            form.clear();
            appendFoldedCharacter(static_cast<utf8proc_int32_t>(i + first), form);
            m_forms[i].size = static_cast<std::uint8_t>(form.copy(m_forms[i].bytes.data(), m_forms[i].bytes.size()));
        }
    }

    static bool covers(std::int32_t codePoint) { return codePoint < 0x800; }

    std::string_view operator[](std::int32_t codePoint) const {
        const Form& form = m_forms[static_cast<std::size_t>(codePoint) - first];
        return {form.bytes.data(), form.size};
    }

private:
    static constexpr std::size_t first = 0x80;
    struct Form {
        std::uint8_t size = 0;
        std::array<char, 7> bytes{}; // the longest has 5
    };
    std::array<Form, 0x800 - first> m_forms{};
};

std::size_t asciiLength(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) - text.begin());
}

void appendLower(std::string_view ascii, std::string& out) {
    const std::size_t begin = out.size();
    out += ascii;
    for (std::size_t i = begin; i < out.size(); ++i) {
        const bool isUpper = out[i] >= 'A' && out[i] <= 'Z';
        out[i] = static_cast<char>(out[i] | (isUpper ? 'a' - 'A' : 0));
    }
}

} // namespace

bool isBlank(std::int32_t codePoint) {
    if (codePoint < 0x80) {
        return codePoint == ' ' || (codePoint >= '\t' && codePoint <= '\r');
    }
    const auto category = utf8proc_category(codePoint);
    return codePoint == 0x85 || category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

std::string_view trimBlanks(std::string_view text) {
    for (auto next = firstCharacter(text); isBlank(next.codePoint); next = firstCharacter(text)) {
        text.remove_prefix(next.size);
    }
    for (auto next = lastCharacter(text); isBlank(next.codePoint); next = lastCharacter(text)) {
        text.remove_suffix(next.size);
    }
    return text;
}

void appendFolded(std::string_view text, std::string& out) {
    static const TwoByteFolds twoByteFolds;
    while (!text.empty()) {
        const std::size_t plain = asciiLength(text);
        appendLower(text.substr(0, plain), out);
        text.remove_prefix(plain);
        const Character character = firstCharacter(text);
        if (character.codePoint < 0) {
            out += text.substr(0, character.size);
        } else if (TwoByteFolds::covers(character.codePoint)) {
            out += twoByteFolds[character.codePoint];
        } else {
            appendFoldedCharacter(character.codePoint, out);
        }
        text.remove_prefix(character.size);
    }
}

std::string folded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    appendFolded(text, out);
    return out;
}

bool isSameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerAscii(x) == lowerAscii(y); });
}

} // namespace host::text
