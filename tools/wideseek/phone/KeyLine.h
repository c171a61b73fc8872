// The line that a key is typed into: its text, and a caret between two of its characters.
//
//     line.insert("an");
//     line.apply(LineEdit::left);
//     line.insert("n");             // "ann", with the caret before its last letter
//
// One thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wideseek {

// What people expect of any line that they type into.
enum class LineEdit {
    left,
    right,
    toBegin,
    toEnd,
    wordLeft,
    wordRight,
    eraseBefore,
    eraseAfter,
    eraseWord, // before the caret, with the blanks behind it
    eraseToBegin,
    eraseToEnd,
};

class KeyLine {
public:
    // In bytes; what would make the text longer is not taken.
    static constexpr std::size_t longest = 255;

    const std::string& text() const { return m_text; }
    std::string_view beforeCaret() const { return std::string_view(m_text).substr(0, m_caret); }
    std::string_view behindCaret() const { return std::string_view(m_text).substr(m_caret); }

    bool hasRoomFor(std::string_view text) const { return m_text.size() + text.size() <= longest; }

    // Puts text (whole UTF-8 characters) before the caret. False: there is no room for it.
    bool insert(std::string_view text);

    // False: the text is as it was; the caret may have moved.
    bool apply(LineEdit edit);

    void clear();

private:
    std::size_t before() const;
    std::size_t behind() const;
    std::size_t wordBefore() const;
    std::size_t wordBehind() const;
    bool moveTo(std::size_t caret);
    bool erase(std::size_t begin, std::size_t end);

    std::string m_text;
    std::size_t m_caret = 0; // in bytes
};

} // namespace wideseek
