#include "host/text/Find.h"

#include "host/text/Fold.h"

#include <utf8proc.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace host::text {

namespace {

// Eight bytes in one word; the first byte is the lowest one whatever the machine's byte order.
using Word = std::uint64_t;
constexpr std::size_t wordSize = sizeof(Word);

constexpr Word everyByte(unsigned char byte) {
    return 0x0101010101010101U * byte;
}

constexpr Word highBits = everyByte(0x80);
constexpr Word lowBits = everyByte(0x7F);

Word load(const char* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, wordSize);
    if constexpr (std::endian::native == std::endian::big) {
        word = __builtin_bswap64(word);
    }
    return word;
}

// The high bit of every byte of word that is zero.
Word zeroBytes(Word word) {
    return ~(((word & lowBits) + lowBits) | word | lowBits);
}

std::size_t firstMarked(Word marks) {
    return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
}

bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

bool isLetterOrDigit(Character character) {
    if (character.codePoint < 0) {
        return false;
    }
    const auto category = utf8proc_category(character.codePoint);
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO &&
           (category <= UTF8PROC_CATEGORY_LO || category >= UTF8PROC_CATEGORY_ND);
}

} // namespace

std::size_t findBytes(std::string_view hay, std::string_view needle, std::size_t from) {
    if (from > hay.size() || needle.size() > hay.size() - from) {
        return std::string_view::npos;
    }
    if (needle.size() == 1) {
        return hay.find(needle.front(), from);
    }
    const std::size_t places = hay.size() - needle.size() + 1;
    const char* const begin = hay.data();
    const std::size_t toLast = needle.size() - 1;
    const Word first = everyByte(static_cast<unsigned char>(needle.front()));
    const Word last = everyByte(static_cast<unsigned char>(needle.back()));
    std::size_t at = from;
    for (; at + wordSize <= places; at += wordSize) {
        const Word difference = (load(begin + at) ^ first) | (load(begin + at + toLast) ^ last);
        for (Word marks = zeroBytes(difference); marks != 0; marks &= marks - 1) {
            const std::size_t place = at + firstMarked(marks);
            if (std::memcmp(begin + place + 1, needle.data() + 1, toLast) == 0) {
                return place;
            }
        }
    }
    for (; at < places; ++at) {
        if (begin[at] == needle.front() && std::memcmp(begin + at, needle.data(), needle.size()) == 0) {
            return at;
        }
    }
    return std::string_view::npos;
}

void FieldMatcher::setKey(std::string_view key) {
    m_key = key;
    m_folded.clear();
    appendFolded(key, m_folded);
    m_isAscii = std::all_of(m_folded.begin(), m_folded.end(), isAscii);
}

bool FieldMatcher::isIn(std::string_view text) {
    if (m_folded.empty()) {
        return true;
    }
    const Found found = m_isAscii ? findInAscii(text) : Found::foldFirst;
    if (found != Found::foldFirst) {
        return found == Found::yes;
    }
    return findBytes(fold(text), m_folded, 0) != std::string::npos;
}

bool FieldMatcher::isWordIn(std::string_view text) {
    if (m_folded.empty()) {
        return true;
    }
    const std::string_view all = fold(text);
    for (std::size_t at = findBytes(all, m_folded, 0); at != std::string_view::npos;
         at = findBytes(all, m_folded, at + 1)) {
        if (!isLetterOrDigit(lastCharacter(all.substr(0, at))) &&
            !isLetterOrDigit(firstCharacter(all.substr(at + m_folded.size())))) {
            return true;
        }
    }
    return false;
}

// For a key of ASCII. A hit ahead of the first byte that is not ASCII counts: folding works character by character.
FieldMatcher::Found FieldMatcher::findInAscii(std::string_view text) const {
    const char anchor = m_folded.front();
    const bool isLetter = anchor >= 'a' && anchor <= 'z';
    const Word anchors = everyByte(static_cast<unsigned char>(anchor));
    const Word caseBits = isLetter ? everyByte('a' - 'A') : 0; // only a letter's two cases become it with this bit set
    std::size_t at = 0;
    for (; at + wordSize <= text.size(); at += wordSize) {
        const Word word = load(text.data() + at);
        if ((word & highBits) != 0) {
            return Found::foldFirst;
        }
        for (Word marks = zeroBytes((word | caseBits) ^ anchors); marks != 0; marks &= marks - 1) {
            if (isAt(text, at + firstMarked(marks))) {
                return Found::yes;
            }
        }
    }
    for (; at < text.size(); ++at) {
        if (!isAscii(text[at])) {
            return Found::foldFirst;
        }
        if (lower(text[at]) == anchor && isAt(text, at)) {
            return Found::yes;
        }
    }
    return Found::no;
}

bool FieldMatcher::isAt(std::string_view text, std::size_t at) const {
    if (m_folded.size() > text.size() - at) {
        return false;
    }
    for (std::size_t i = 1; i < m_folded.size(); ++i) {
        if (lower(text[at + i]) != m_folded[i]) {
            return false;
        }
    }
    return true;
}

const std::string& FieldMatcher::fold(std::string_view text) {
    m_buffer.clear();
    appendFolded(text, m_buffer);
    return m_buffer;
}

} // namespace host::text
