#include "host/text/PlainWord.h"

#include "host/text/NameForm.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace host::text {

bool PlainWord::canBe(std::string_view word) {
    constexpr std::size_t longest = 16;
    return word.size() <= longest && std::all_of(word.begin(), word.end(), isAscii);
}

PlainWord::PlainWord(std::string word) : m_word(std::move(word)) {
    const std::string_view lastTwo =
        std::string_view(m_word).substr(m_word.size() - std::min<std::size_t>(m_word.size(), 2));
    m_beforeLast = everyByte(static_cast<unsigned char>(lastTwo.front())) | anyCase;
    m_last = everyByte(static_cast<unsigned char>(lastTwo.back())) | anyCase;
    m_toLast = lastTwo.size() > 1 ? 8 : 0;
}

bool PlainWord::isIn(std::string_view name) const {
    const auto isInWord = [&](Word bytes, std::size_t at) {
        for (Word marks = candidates(bytes); marks != 0; marks &= marks - 1) {
            if (endsAt(at + firstMarked(marks) + m_toLast / 8, name)) {
                return true;
            }
        }
        return false;
    };
    if (name.size() < wordSize) {
        return isInWord(loadFew(name.data(), name.size()), 0);
    }
    const std::size_t last = name.size() - wordSize;
    for (std::size_t at = 0;; at = std::min(at + stride, last)) {
        if (isInWord(load(name.data() + at), at)) {
            return true;
        }
        if (at == last) {
            return false;
        }
    }
}

bool PlainWord::endsAt(std::size_t place, std::string_view name) const {
    std::size_t left = m_word.size();
    for (std::size_t at = std::min(place + 1, name.size()); at > 0;) {
        const char byte = name[--at];
        if (!isAscii(byte)) {
            return false;
        }
        const char form = compactOfAscii[static_cast<unsigned char>(byte)];
        if (form == '\0') {
            continue;
        }
        if (form != m_word[--left]) {
            return false;
        }
        if (left == 0) {
            return true;
        }
    }
    return false;
}

} // namespace host::text
