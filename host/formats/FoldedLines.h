// The lines of a text in which long lines are folded: a line that begins with a blank goes on with the line before it
// (RFC 2425, section 5.8.1; RFC 2849, note 2). Where nothing is folded nothing is copied. Of the text only the line is
// held that is read, and of that no more than `longest` bytes.
//
//     FoldedLines lines(text);
//     while (lines.next()) {
//         if (isWanted(lines.first())) { use(lines.whole(), lines.number()); }
//     }
#pragma once

#include "host/files/TextWindow.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace host {

class FoldedLines {
public:
    static constexpr std::size_t longest = 4UL << 20U; // bytes; what a line has beyond is passed over

    // text must outlive what is given of it. Lines end with LF, CRLF or CR alone.
    explicit FoldedLines(TextWindow text) : m_text(std::move(text)) {}

    // Goes to the next line, over all that belongs to this one. False at the end.
    bool next();

    // The line as far as it is not folded; valid until next() or one of the calls below.
    std::string_view first() const { return m_first; }

    // The line with what was folded; valid until next() or the next of these calls. As it was in vCard 2.1 (section
    // 2.1.3 there), the blank at which a line was folded is the text's own.
    std::string_view whole();
    std::string_view wholeWithBlanks();

    // As whole(), where a "=" at the end of a line joins it with the next one (quoted-printable's soft line break, RFC
    // 2045, section 6.7), which stays as it is.
    std::string_view wholeWithSoftBreaks();

    std::size_t number() const { return m_number; } // of the line's first one, from 1
    std::size_t begin() const { return m_begin; }   // where it begins in the text
    std::size_t end() const { return m_next; }      // behind what has been read of it

private:
    std::string_view take();
    std::string_view takeLong(std::string_view text);
    bool goesOn();
    bool hasMore() { return !m_text.from(m_next).empty(); }
    std::string_view join(bool blanks, bool softBreaks);

    TextWindow m_text;
    std::size_t m_next = 0;
    std::size_t m_nextNumber = 1;
    std::string_view m_first;
    std::size_t m_number = 0;
    std::size_t m_begin = 0;
    std::string m_joined;
    std::string m_long; // of a line that is longer than is held
};

} // namespace host
