#include "host/text/FieldMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Words.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <string>

namespace host::text {

namespace {

// With these set, the two cases of a letter are the same byte, and so are some bytes that are no letters.
constexpr Word anyCase = everyByte('a' - 'A');

// At how many bytes of a word two bytes may begin, as far as the word tells.
constexpr std::size_t covered = wordSize - 1;

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

// A key that folds to ASCII, made ready for fields that need no folding. Plain data, so that each thread has one
// without making it.
class PlainKey {
public:
    // Of a key that cannot be made ready, nothing is kept.
    void set(std::string_view key, std::string_view folded);

    std::string_view key() const { return {m_key.data(), m_size}; }

    bool isFor(std::string_view key) const {
        if (key.size() != m_size) {
            return false;
        }
        return m_size < wordSize ? loadFew(key.data(), m_size) == m_keyStart
                                 : load(key.data()) == m_keyStart && load(key.data() + m_size - wordSize) == m_keyEnd;
    }

    // The high bit of every byte of word at which the key's last two bytes may stand, and of every byte that is not
    // ASCII. Both are looked for at once, as one alone is found too often and in vain; the last two, as what a person
    // narrows has all that was typed before them.
    Word candidates(Word word) const {
        const Word bytes = word | anyCase;
        const Word difference = (bytes ^ m_beforeLast) | ((bytes >> m_toLast) ^ m_last);
        return (~(difference + lowBits) | word) & highBits;
    }

    // Whether it stands in text with its last two bytes at `from` or behind.
    bool isFrom(std::size_t from, std::string_view text) const;

private:
    static constexpr std::size_t longest = 2 * wordSize;

    bool isAt(std::size_t at, std::string_view text) const;

    std::array<char, longest> m_key{};
    std::array<char, longest> m_folded{};
    std::size_t m_size = std::string_view::npos; // of m_key; npos: there is none
    std::size_t m_foldedSize = 0;
    Word m_keyStart = 0;   // its first eight bytes, zero behind its end
    Word m_keyEnd = 0;     // its last eight bytes, when it has as many
    Word m_start = 0;      // the same of m_folded
    Word m_startMask = 0;  // which of those there are
    Word m_startCase = 0;  // the bits that a letter's case makes of no account
    Word m_beforeLast = 0; // its last two bytes with anyCase, each eight times; a single byte is both
    Word m_last = 0;
    unsigned m_toLast = 0; // how many bits lie between the two
};

void PlainKey::set(std::string_view key, std::string_view folded) {
    *this = {};
    if (key.size() > longest || folded.size() > longest || folded.empty() ||
        !std::all_of(folded.begin(), folded.end(), isAscii)) {
        return;
    }
    std::copy(key.begin(), key.end(), m_key.begin());
    std::copy(folded.begin(), folded.end(), m_folded.begin());
    m_size = key.size();
    m_foldedSize = folded.size();
    m_keyStart = wordAt(key, 0);
    m_keyEnd = key.size() < wordSize ? 0 : wordAt(key, key.size() - wordSize);
    m_start = wordAt(folded, 0);
    const std::size_t inWord = std::min(folded.size(), wordSize);
    m_startMask = inWord < wordSize ? (Word(1) << 8 * inWord) - 1 : ~Word(0);
    for (std::size_t i = 0; i < inWord; ++i) {
        m_startCase |= caseBit(folded[i]) << 8 * i;
    }
    const std::string_view lastTwo = folded.substr(folded.size() - std::min(folded.size(), std::size_t(2)));
    m_beforeLast = everyByte(static_cast<unsigned char>(lastTwo.front())) | anyCase;
    m_last = everyByte(static_cast<unsigned char>(lastTwo.back())) | anyCase;
    m_toLast = lastTwo.size() > 1 ? 8 : 0;
}

bool PlainKey::isFrom(std::size_t from, std::string_view text) const {
    const std::size_t ahead = m_foldedSize - (m_toLast != 0 ? 2 : 1);
    for (std::size_t at = from; at < text.size(); at += covered) {
        for (Word marks = candidates(wordAt(text, at)); marks != 0; marks &= marks - 1) {
            const std::size_t place = at + firstMarked(marks);
            if (place >= ahead && isAt(place - ahead, text)) {
                return true;
            }
        }
    }
    return false;
}

bool PlainKey::isAt(std::size_t at, std::string_view text) const {
    if (at + m_foldedSize > text.size() || (((wordAt(text, at) | m_startCase) ^ m_start) & m_startMask) != 0) {
        return false;
    }
    for (std::size_t i = wordSize; i < m_foldedSize; ++i) {
        if (lower(text[at + i]) != m_folded[i]) {
            return false;
        }
    }
    return true;
}

// Any key, and any field, which is folded.
class FoldedKey {
public:
    bool isFor(std::string_view key) const { return key == m_key; }
    void set(std::string_view key);
    std::string_view folded() const { return m_folded; }

    bool isIn(std::string_view text) { return findBytes(fold(text), m_folded, 0) != std::string::npos; }
    bool isWordIn(std::string_view text);

private:
    std::string_view fold(std::string_view text);

    std::string m_key;
    std::string m_folded;
    std::string m_buffer;
};

void FoldedKey::set(std::string_view key) {
    std::string folded = text::folded(key);
    m_key = key; // nothing fails from here on, or this does and nothing has changed
    m_folded.swap(folded);
}

bool FoldedKey::isWordIn(std::string_view text) {
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

std::string_view FoldedKey::fold(std::string_view text) {
    m_buffer.clear();
    appendFolded(text, m_buffer);
    return m_buffer;
}

constinit thread_local PlainKey plainKey;

[[gnu::noinline]] bool isInFolded(std::string_view text, std::string_view key, bool asWord) {
    thread_local FoldedKey foldedKey;
    if (!foldedKey.isFor(key)) {
        foldedKey.set(key);
        plainKey.set(key, foldedKey.folded());
    }
    if (foldedKey.folded().empty()) {
        return true;
    }
    return asWord ? foldedKey.isWordIn(text) : foldedKey.isIn(text);
}

// A hit counts whatever else the text holds, as folding leaves what is ASCII side by side; without one, what is not
// ASCII may still fold to the key.
[[gnu::noinline]] bool isInFrom(std::size_t from, std::string_view text) {
    return plainKey.isFrom(from, text) ||
           (!std::all_of(text.begin(), text.end(), isAscii) && isInFolded(text, plainKey.key(), false));
}

} // namespace

bool isIn(std::string_view text, std::string_view key, bool asWord) {
    const PlainKey& ready = plainKey;
    if (asWord || !ready.isFor(key)) [[unlikely]] {
        return isInFolded(text, key, asWord);
    }
    if (text.size() < wordSize) {
        return ready.candidates(loadFew(text.data(), text.size())) != 0 && isInFrom(0, text);
    }
    const std::size_t last = text.size() - wordSize;
    for (std::size_t at = 0;; at = std::min(at + covered, last)) {
        if (ready.candidates(load(text.data() + at)) != 0) {
            return isInFrom(at, text);
        }
        if (at == last) {
            return false;
        }
    }
}

} // namespace host::text
