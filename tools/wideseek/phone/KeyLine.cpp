#include "tools/wideseek/phone/KeyLine.h"

#include "host/text/Fold.h"
#include "host/text/Utf8.h"

namespace wideseek {

bool KeyLine::insert(std::string_view text) {
    if (!hasRoomFor(text)) {
        return false;
    }
    m_text.insert(m_caret, text);
    m_caret += text.size();
    return true;
}

bool KeyLine::apply(LineEdit edit) {
    switch (edit) {
    case LineEdit::left:
        return moveTo(before());
    case LineEdit::right:
        return moveTo(behind());
    case LineEdit::toBegin:
        return moveTo(0);
    case LineEdit::toEnd:
        return moveTo(m_text.size());
    case LineEdit::wordLeft:
        return moveTo(wordBefore());
    case LineEdit::wordRight:
        return moveTo(wordBehind());
    case LineEdit::eraseBefore:
        return erase(before(), m_caret);
    case LineEdit::eraseAfter:
        return erase(m_caret, behind());
    case LineEdit::eraseWord:
        return erase(wordBefore(), m_caret);
    case LineEdit::eraseToBegin:
        return erase(0, m_caret);
    case LineEdit::eraseToEnd:
        return erase(m_caret, m_text.size());
    }
    return false;
}

void KeyLine::clear() {
    m_text.clear();
    m_caret = 0;
}

std::size_t KeyLine::before() const {
    return m_caret - host::text::lastCharacter(beforeCaret()).size;
}

std::size_t KeyLine::behind() const {
    return m_caret + host::text::firstCharacter(behindCaret()).size;
}

std::size_t KeyLine::wordBefore() const {
    std::string_view rest = beforeCaret();
    const auto passWhile = [&](bool blank) {
        while (!rest.empty() && host::text::isBlank(host::text::lastCharacter(rest).codePoint) == blank) {
            rest.remove_suffix(host::text::lastCharacter(rest).size);
        }
    };
    passWhile(true);
    passWhile(false);
    return rest.size();
}

std::size_t KeyLine::wordBehind() const {
    std::string_view rest = behindCaret();
    const auto passWhile = [&](bool blank) {
        while (!rest.empty() && host::text::isBlank(host::text::firstCharacter(rest).codePoint) == blank) {
            host::text::takeFirst(rest);
        }
    };
    passWhile(true);
    passWhile(false);
    return m_text.size() - rest.size();
}

bool KeyLine::moveTo(std::size_t caret) {
    m_caret = caret;
    return false;
}

bool KeyLine::erase(std::size_t begin, std::size_t end) {
    m_text.erase(begin, end - begin);
    m_caret = begin;
    return begin != end;
}

} // namespace wideseek
