#include "host/text/FieldMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Words.h"

#include <utf8proc.h>

#include <algorithm>
#include <string>

namespace host::text {

namespace {

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

// Made ready for one key at a time.
class FieldMatcher {
public:
    // Whether setKey was called with this key last, or never and it is empty.
    bool isFor(std::string_view key) const {
        return key.size() == m_key.size() &&
               (key.size() <= wordSize ? wordAt(key, 0) == m_keyStart : key == std::string_view(m_key));
    }

    [[gnu::noinline]] void setKey(std::string_view key); // is out of the way of what each field takes

    bool isIn(std::string_view text);
    bool isWordIn(std::string_view text);

private:
    enum class Found { yes, no, foldFirst };

    Found findInAscii(std::string_view text) const;
    bool isAt(std::string_view text, std::size_t at) const;
    const std::string& fold(std::string_view text);

    std::string m_key;
    Word m_keyStart = 0; // its first eight bytes, zero behind its end
    std::string m_folded;
    bool m_isAscii = false; // m_folded is, and not empty; then the following stand for it:
    Word m_start = 0;       // its first eight bytes, zero behind its end
    Word m_startMask = 0;   // which of them there are
    Word m_startCase = 0;   // the bits that a letter's case makes of no account
    Word m_first = 0;       // its first byte, eight times
    Word m_firstCase = 0;
    Word m_second = 0; // its second byte
    Word m_secondCase = 0;
    Word m_secondKnown = 0; // the bytes of a word behind which the second byte can be looked for
    std::string m_buffer;
};

void FieldMatcher::setKey(std::string_view key) {
    std::string folded = text::folded(key);
    m_key = key; // nothing fails from here on, or this does and nothing has changed
    m_keyStart = wordAt(m_key, 0);
    m_folded.swap(folded);
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

bool FieldMatcher::isIn(std::string_view text) {
    const Found found = m_isAscii ? findInAscii(text) : Found::foldFirst;
    if (found != Found::foldFirst) {
        return found == Found::yes;
    }
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

FieldMatcher& matcherFor(std::string_view key) {
    thread_local FieldMatcher matcher;
    if (!matcher.isFor(key)) [[unlikely]] {
        matcher.setKey(key);
    }
    return matcher;
}

} // namespace

bool isIn(std::string_view text, std::string_view key, bool asWord) {
    FieldMatcher& matcher = matcherFor(key);
    return asWord ? matcher.isWordIn(text) : matcher.isIn(text);
}

} // namespace host::text
