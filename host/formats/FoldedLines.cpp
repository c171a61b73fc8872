#include "host/formats/FoldedLines.h"

#include "host/formats/ReadContacts.h"

#include <algorithm>

namespace host {

namespace {

// Where the first line ends: the place of its CR or LF, or the text's end.
std::size_t endOfLine(std::string_view text) {
    const std::size_t feed = std::min(text.find('\n'), text.size());
    return std::min(text.substr(0, feed).find('\r'), feed);
}

// How many bytes end the line there.
std::size_t sizeOfLineEnd(std::string_view text) {
    return text.empty() ? 0 : text.starts_with("\r\n") ? 2 : 1;
}

} // namespace

bool FoldedLines::next() {
    while (goesOn() && m_number > 0) {
        take();
    }
    if (!hasMore()) {
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
    while (hasMore()) {
        if (softBreaks && last.ends_with('=')) {
            m_joined.pop_back();
            last = take();
        } else if (goesOn()) {
            last = take();
            last.remove_prefix(blanks ? 0 : 1);
        } else {
            break;
        }
        m_joined += cutAt(last, longest - std::min(longest, m_joined.size()));
    }
    return m_joined;
}

bool FoldedLines::goesOn() {
    const std::string_view text = m_text.from(m_next);
    return text.starts_with(' ') || text.starts_with('\t');
}

// The byte behind the line's end is held with the line, so that a look at it leaves the line where it is.
std::string_view FoldedLines::take() {
    std::string_view text = m_text.from(m_next);
    std::size_t end = endOfLine(text);
    for (std::size_t held = 0; end + 2 >= text.size() && end < longest && text.size() > held;) {
        held = text.size();
        text = m_text.from(m_next, held + 1);
        end = endOfLine(text);
    }
    ++m_nextNumber;
    if (end >= longest) {
        return takeLong(text);
    }
    m_next += end + sizeOfLineEnd(text.substr(end));
    return text.substr(0, end);
}

std::string_view FoldedLines::takeLong(std::string_view text) {
    m_long = cutAt(text, longest);
    std::size_t end = 0;
    do {
        text = m_text.from(m_next);
        end = endOfLine(text);
        m_next += end;
    } while (end == text.size() && end > 0);
    m_next += sizeOfLineEnd(m_text.from(m_next, 2));
    return m_long;
}

} // namespace host
