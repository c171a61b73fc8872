#include "host/text/NameForm.h"

#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host::text {

namespace {

bool isIgnoredAscii(char byte) {
    return compactOfAscii[static_cast<unsigned char>(byte)] == '\0';
}

void appendCompactAscii(std::string_view text, std::string& out) {
    std::size_t size = out.size();
    out.resize(size + text.size());
    for (const char byte : text) {
        const char form = compactOfAscii[static_cast<unsigned char>(byte)];
        out[size] = form;
        size += form != '\0' ? 1 : 0;
    }
    out.resize(size);
}

std::string_view takeAscii(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isAscii);
    const std::string_view ascii(text.begin(), end);
    text.remove_prefix(ascii.size());
    return ascii;
}

// Characters may fold to what counts for nothing, such as an ellipsis to three dots.
void appendCompactCharacter(std::string_view character, std::string& out) {
    const std::size_t begin = out.size();
    appendFolded(character, out);
    const auto ignored = [](char byte) { return isAscii(byte) && isIgnoredAscii(byte); };
    out.erase(std::remove_if(out.begin() + static_cast<std::ptrdiff_t>(begin), out.end(), ignored), out.end());
}

bool isComma(std::int32_t codePoint) {
    constexpr std::int32_t arabic = 0x060C;
    constexpr std::int32_t ideographic = 0x3001;
    return codePoint == ',' || codePoint == arabic || codePoint == ideographic;
}

// How a letter is also written. A mark may follow it as a character of its own.
std::string_view alsoWritten(std::int32_t letter, std::int32_t mark) {
    constexpr std::int32_t diaeresis = 0x308;
    constexpr std::int32_t ring = 0x30A;
    switch (letter) {
    case 0xC4:
    case 0xE4:
        return "ae";
    case 0xD6:
    case 0xD8:
    case 0xF6:
    case 0xF8:
        return "oe";
    case 0xDC:
    case 0xFC:
        return "ue";
    case 0xC5:
    case 0xE5:
        return "aa";
    case 'A':
    case 'a':
        return mark == diaeresis ? "ae" : mark == ring ? "aa" : "";
    case 'O':
    case 'o':
        return mark == diaeresis ? "oe" : "";
    case 'U':
    case 'u':
        return mark == diaeresis ? "ue" : "";
    default:
        return {};
    }
}

// Whether there is a byte pair of alsoWritten, in UTF-8, which few names have.
bool hasAnotherWay(std::string_view name) {
    for (std::size_t i = 1; i < name.size(); ++i) {
        const bool mayBeLetter = name[i - 1] == '\xC3';
        const bool isMark = name[i - 1] == '\xCC' && (name[i] == '\x88' || name[i] == '\x8A');
        if (isMark || (mayBeLetter && !alsoWritten(firstCharacter(name.substr(i - 1)).codePoint, -1).empty())) {
            return true;
        }
    }
    return false;
}

void appendForms(std::string_view name, void (*append)(std::string_view, std::string&), std::string& out) {
    append(name, out);
    out += formSeparator;
    if (const std::string spelled = spelledOut(name); !spelled.empty()) {
        append(spelled, out);
        out += formSeparator;
    }
}

} // namespace

bool isIgnored(std::int32_t codePoint) {
    if (codePoint < 0x80) {
        return codePoint >= 0 && isIgnoredAscii(static_cast<char>(codePoint));
    }
    if (codePoint >= 0xC0 && codePoint < 0x2B0) {
        return false; // the letters that most names beyond ASCII are made of
    }
    switch (codePoint) {
    case 0xB4:   // acute accent
    case 0xB7:   // middle dot
    case 0x2BB:  // letter turned comma
    case 0x2BC:  // letter apostrophe
    case 0x2032: // prime
    case 0x2212: // minus
    case 0x30FB: // katakana middle dot
        return true;
    default:
        break;
    }
    switch (utf8proc_category(codePoint)) {
    case UTF8PROC_CATEGORY_PD:
    case UTF8PROC_CATEGORY_PS:
    case UTF8PROC_CATEGORY_PE:
    case UTF8PROC_CATEGORY_PI:
    case UTF8PROC_CATEGORY_PF:
        return true;
    default:
        return isComma(codePoint) || isBlank(codePoint);
    }
}

std::string_view takeWord(std::string_view& text) {
    while (!text.empty() && isIgnored(firstCharacter(text).codePoint)) {
        takeFirst(text);
    }
    const std::string_view from = text;
    while (!text.empty() && !isIgnored(firstCharacter(text).codePoint)) {
        takeFirst(text);
    }
    return from.substr(0, from.size() - text.size());
}

Spelling takeSpelling(std::string_view& text) {
    const std::string_view from = text;
    const std::int32_t letter = takeFirst(text).codePoint;
    const Character next = firstCharacter(text);
    const std::string_view written = alsoWritten(letter, next.codePoint);
    if (!written.empty() && isAscii(from.front())) {
        text.remove_prefix(next.size);
    }
    const std::string_view character = from.substr(0, from.size() - text.size());
    return {character, written.empty() ? character : written};
}

std::string spelledOut(std::string_view name) {
    std::string out;
    bool differs = false;
    for (std::string_view rest = hasAnotherWay(name) ? name : std::string_view(); !rest.empty();) {
        const Spelling next = takeSpelling(rest);
        differs = differs || next.spelled.data() != next.character.data();
        out += next.spelled;
    }
    if (!differs) {
        out.clear();
    }
    return out;
}

void appendCompact(std::string_view text, std::string& out) {
    while (!text.empty()) {
        appendCompactAscii(takeAscii(text), out);
        if (!text.empty()) {
            const std::string_view from = text;
            const Character character = takeFirst(text);
            if (!isIgnored(character.codePoint)) {
                appendCompactCharacter(from.substr(0, character.size), out);
            }
        }
    }
}

void appendNameForms(std::string_view name, std::string& out) {
    appendForms(name, appendCompact, out);
}

void appendKeypadForms(std::string_view name, std::string& out) {
    appendForms(name, appendKeypadForm, out);
}

std::vector<std::string_view> typedWords(std::string_view key) {
    std::vector<std::string_view> words;
    std::size_t size = 0;
    for (std::string_view rest = key; !rest.empty();) {
        const Character next = takeFirst(rest);
        if (!isBlank(next.codePoint) && !isComma(next.codePoint)) {
            size += next.size;
        } else {
            if (size != 0) {
                words.push_back(key.substr(0, size));
            }
            key = rest;
            size = 0;
        }
    }
    if (size != 0) {
        words.push_back(key);
    }
    return words;
}

std::vector<std::string> keyWords(std::string_view key) {
    std::vector<std::string> words;
    for (const std::string_view typed : typedWords(key)) {
        std::string word;
        appendCompact(typed, word);
        if (!word.empty()) {
            words.push_back(std::move(word));
        }
    }
    return words;
}

} // namespace host::text
