#include "host/text/KeypadKey.h"

#include <algorithm>

namespace host::text {

void KeypadKey::set(std::string_view key) {
    *this = {};
    if (key.size() > longest) {
        return;
    }
    std::copy(key.begin(), key.end(), m_key.begin());
    m_size = key.size();
    m_start = wordAt(key, 0);
    m_startMask = key.size() < wordSize ? (Word(1) << 8 * key.size()) - 1 : ~Word(0);
    m_end = key.size() < wordSize ? 0 : wordAt(key, key.size() - wordSize);
    const std::string_view lastTwo = key.substr(key.size() - std::min(key.size(), std::size_t(2)));
    m_beforeLast = everyByte(static_cast<unsigned char>(lastTwo.front()));
    m_last = everyByte(static_cast<unsigned char>(lastTwo.back()));
    m_toLast = lastTwo.size() > 1 ? 8 : 0;
}

bool KeypadKey::isFrom(std::size_t from, std::string_view text) const {
    const std::size_t ahead = m_size - (m_toLast != 0 ? 2 : 1);
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

bool KeypadKey::isAt(std::size_t at, std::string_view text) const {
    return at + m_size <= text.size() && ((wordAt(text, at) ^ m_start) & m_startMask) == 0 &&
           (m_size <= wordSize || load(text.data() + at + m_size - wordSize) == m_end);
}

} // namespace host::text
