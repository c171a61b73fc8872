#include "host/text/PlainKey.h"

#include "host/text/Utf8.h"

#include <algorithm>

namespace host::text {

namespace {

char lower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// The bit that tells the two cases of a folded letter apart: set, both become it, and nothing else does.
Word caseBit(char folded) {
    return folded >= 'a' && folded <= 'z' ? 'a' - 'A' : 0;
}

} // namespace

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
    for (std::size_t at = from; at < text.size(); at += stride) {
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

} // namespace host::text
