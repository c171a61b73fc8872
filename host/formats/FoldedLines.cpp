#include "host/formats/FoldedLines.h"

#include <algorithm>

namespace host {

bool FoldedLines::next() {
    while (goesOn() && m_number > 0) {
        take();
    }
    if (m_next >= m_text.size()) {
        return false;
    }
    m_number = m_nextNumber;
    m_begin = m_next;
    m_first = take();
    return true;
}

std::string_view FoldedLines::whole() {
    return join(false, false);
}

std::string_view FoldedLines::wholeWithBlanks() {
    return join(true, false);
}

std::string_view FoldedLines::wholeWithSoftBreaks() {
    return join(false, true);
}

std::string_view FoldedLines::join(bool blanks, bool softBreaks) {
    std::string_view last = m_first;
    if (!goesOn() && !(softBreaks && last.ends_with('='))) {
        return m_first;
    }
    m_joined = m_first;
    while (m_next < m_text.size()) {
        if (softBreaks && last.ends_with('=')) {
            m_joined.pop_back();
            last = take();
        } else if (goesOn()) {
            last = take();
            last.remove_prefix(blanks ? 0 : 1);
        } else {
            break;
        }
        m_joined += last;
    }
    return m_joined;
}

bool FoldedLines::goesOn() const {
    return m_next < m_text.size() && (m_text[m_next] == ' ' || m_text[m_next] == '\t');
}

std::string_view FoldedLines::take() {
    const std::size_t begin = m_next;
    const std::size_t feed = std::min(m_text.find('\n', begin), m_text.size());
    const std::size_t end = begin + std::min(m_text.substr(begin, feed - begin).find('\r'), feed - begin);
    m_next = std::min(feed == end + 1 ? feed + 1 : end + 1, m_text.size());
    ++m_nextNumber;
    return m_text.substr(begin, end - begin);
}

} // namespace host
