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

// byte is at most 0xFF.
constexpr Word everyByte(Word byte) {
    return 0x0101010101010101U * byte;
}

constexpr Word highBits = everyByte(0x80);
constexpr Word lowBits = everyByte(0x7F);

template <typename Bytes> Word load(const char* bytes) {
    Bytes word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = sizeof word == wordSize ? __builtin_bswap64(word) : __builtin_bswap32(static_cast<std::uint32_t>(word));
    }
    return word;
}

// size is less than wordSize; the rest of the word is zero.
Word loadFew(const char* bytes, std::size_t size) {
    using Half = std::uint32_t;
    if (size >= sizeof(Half)) {
        const std::size_t overlapped = size - sizeof(Half);
        return load<Half>(bytes) | load<Half>(bytes + overlapped) << 8 * overlapped;
    }
    Word word = 0;
    for (std::size_t i = 0; i < size; ++i) {
        word |= Word(static_cast<unsigned char>(bytes[i])) << 8 * i;
    }
    return word;
}

// The bytes of text from at on, which is in text; zero where they are fewer than a word has.
Word wordAt(std::string_view text, std::size_t at) {
    const std::size_t left = text.size() - at;
    if (left >= wordSize) {
        return load<Word>(text.data() + at);
    }
    if (text.size() >= wordSize) {
        return load<Word>(text.data() + text.size() - wordSize) >> 8 * (wordSize - left);
    }
    return loadFew(text.data() + at, left);
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

// The bit that tells the two cases of a folded letter apart: set, both become it, and nothing else does.
Word caseBit(char folded) {
    return folded >= 'a' && folded <= 'z' ? 'a' - 'A' : 0;
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
        const Word difference = (load<Word>(begin + at) ^ first) | (load<Word>(begin + at + toLast) ^ last);
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
    m_isAscii = !m_folded.empty() && std::all_of(m_folded.begin(), m_folded.end(), isAscii);
    const std::size_t inWord = std::min(m_folded.size(), wordSize);
    m_start = wordAt(m_folded, 0);
    m_startMask = inWord < wordSize ? (Word(1) << 8 * inWord) - 1 : ~Word(0);
    m_startCase = 0;
    for (std::size_t i = 0; i < inWord; ++i) {
        m_startCase |= caseBit(m_folded[i]) << 8 * i;
    }
    m_first = everyByte(m_start & 0xFF);
    m_firstCase = everyByte(m_startCase & 0xFF);
    m_second = everyByte(m_start >> 8 & 0xFF);
    m_secondCase = everyByte(m_startCase >> 8 & 0xFF);
    m_secondKnown = inWord > 1 ? ~Word(0) >> 8 : 0;
}

bool FieldMatcher::isInFolded(std::string_view text) {
    return m_folded.empty() || findBytes(fold(text), m_folded, 0) != std::string::npos;
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

// For a key of ASCII. A hit ahead of the first word with a byte that is not ASCII counts: folding works character by
// character.
FieldMatcher::Found FieldMatcher::findInAscii(std::string_view text) const {
    for (std::size_t at = 0; at < text.size(); at += wordSize) {
        const Word word = wordAt(text, at);
        if ((word & highBits) != 0) {
            return Found::foldFirst;
        }
        // Both of the key's first two bytes are looked for at once: one alone is found too often, and in vain.
        const Word first = (word | m_firstCase) ^ m_first;
        const Word second = ((word >> 8) | m_secondCase) ^ m_second;
        const Word difference = first | (second & m_secondKnown);
        for (Word marks = ~(difference + lowBits) & highBits; marks != 0; marks &= marks - 1) {
            if (isAt(text, at + firstMarked(marks))) {
                return Found::yes;
            }
        }
    }
    return Found::no;
}

bool FieldMatcher::isAt(std::string_view text, std::size_t at) const {
    if (at + m_folded.size() > text.size() || (((wordAt(text, at) | m_startCase) ^ m_start) & m_startMask) != 0) {
        return false;
    }
    for (std::size_t i = wordSize; i < m_folded.size(); ++i) {
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
