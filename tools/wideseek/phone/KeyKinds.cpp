#include "tools/wideseek/phone/KeyKinds.h"

namespace wideseek {

std::optional<LineEdit> editOf(Key key) {
    switch (key) {
    case Key::left:
        return LineEdit::left;
    case Key::right:
        return LineEdit::right;
    case Key::toBegin:
        return LineEdit::toBegin;
    case Key::toEnd:
        return LineEdit::toEnd;
    case Key::wordLeft:
        return LineEdit::wordLeft;
    case Key::wordRight:
        return LineEdit::wordRight;
    case Key::eraseBefore:
        return LineEdit::eraseBefore;
    case Key::eraseAfter:
        return LineEdit::eraseAfter;
    case Key::eraseWord:
        return LineEdit::eraseWord;
    case Key::eraseToBegin:
        return LineEdit::eraseToBegin;
    case Key::eraseToEnd:
        return LineEdit::eraseToEnd;
    default:
        return std::nullopt;
    }
}

bool movesCursor(Key key) {
    switch (key) {
    case Key::up:
    case Key::down:
    case Key::pageUp:
    case Key::pageDown:
    case Key::first:
    case Key::last:
    case Key::wheelUp:
    case Key::wheelDown:
        return true;
    default:
        return false;
    }
}

} // namespace wideseek
