#include "tools/wideseek/phone/terminal/TerminalKeys.h"

#include "tools/wideseek/phone/terminal/Curses.h"

#include <array>
#include <string>
#include <string_view>

namespace wideseek {

namespace {

constexpr int control(char letter) {
    return letter - '@';
}

constexpr int deleteByte = 0x7F;

constexpr int ctrlHome = OwnCode::keypad + 0x100;
constexpr int ctrlEnd = ctrlHome + 1;
constexpr int ctrlLeft = ctrlHome + 2;
constexpr int ctrlRight = ctrlHome + 3;
constexpr int altBackspace = ctrlHome + 4;

struct CodedKey {
    int code;
    std::array<const char*, 4> sequences; // behind the Escape
};

// As xterm, the VT terminals, rxvt and the Linux console send them.
constexpr CodedKey codedKeys[] = {
    {KEY_UP, {"[A", "OA"}},
    {KEY_DOWN, {"[B", "OB"}},
    {KEY_RIGHT, {"[C", "OC"}},
    {KEY_LEFT, {"[D", "OD"}},
    {KEY_HOME, {"[H", "OH", "[1~", "[7~"}},
    {KEY_END, {"[F", "OF", "[4~", "[8~"}},
    {KEY_DC, {"[3~"}},
    {KEY_PPAGE, {"[5~"}},
    {KEY_NPAGE, {"[6~"}},
    {ctrlHome, {"[1;5H", "[7^"}},
    {ctrlEnd, {"[1;5F", "[8^"}},
    {ctrlLeft, {"[1;5D", "[1;3D", "[5D", "Od"}},
    {ctrlRight, {"[1;5C", "[1;3C", "[5C", "Oc"}},
    {altBackspace, {"\x7F", "\b"}},
    {KEY_F(1), {"OP", "[11~", "[[A"}},
    {KEY_F(2), {"OQ", "[12~", "[[B"}},
    {KEY_F(3), {"OR", "[13~", "[[C"}},
    {KEY_F(4), {"OS", "[14~", "[[D"}},
    {KEY_F(5), {"[15~", "[[E"}},
    {KEY_F(10), {"[21~"}},
    {KEY_ENTER, {"OM"}},
    {OwnCode::pasteBegin, {"[200~"}},
    {OwnCode::pasteEnd, {"[201~"}},
};

// The numeric keypad in application mode, as the VT100 sends it: Escape, O, and the key's character moved up by 0x40.
constexpr std::string_view keypadKeys = "*+,-./0123456789";
constexpr int keypadShift = 0x40;

} // namespace

void defineSequences() {
    for (const CodedKey& key : codedKeys) {
        for (const char* sequence : key.sequences) {
            if (sequence != nullptr) {
                define_key((std::string("\033") + sequence).c_str(), key.code);
            }
        }
    }
    for (const char key : keypadKeys) {
        define_key((std::string("\033O") + static_cast<char>(key + keypadShift)).c_str(), OwnCode::keypad + key);
    }
}

std::optional<char> keypadCharacter(int code) {
    if (code < OwnCode::keypad || code >= ctrlHome) {
        return std::nullopt;
    }
    return static_cast<char>(code - OwnCode::keypad);
}

std::optional<Key> keyOf(int code) {
    switch (code) {
    case KEY_BACKSPACE:
    case deleteByte:
    case control('H'):
        return Key::eraseBefore;
    case KEY_DC:
    case control('D'):
        return Key::eraseAfter;
    case control('W'):
    case altBackspace:
        return Key::eraseWord;
    case control('U'):
        return Key::eraseToBegin;
    case control('K'):
        return Key::eraseToEnd;
    case KEY_LEFT:
    case control('B'):
        return Key::left;
    case KEY_RIGHT:
    case control('F'):
        return Key::right;
    case KEY_HOME:
    case control('A'):
        return Key::toBegin;
    case KEY_END:
    case control('E'):
        return Key::toEnd;
    case ctrlLeft:
        return Key::wordLeft;
    case ctrlRight:
        return Key::wordRight;
    case KEY_ENTER:
    case control('M'):
    case control('J'):
        return Key::enter;
    case KEY_UP:
    case control('P'):
        return Key::up;
    case KEY_DOWN:
    case control('N'):
        return Key::down;
    case KEY_PPAGE:
        return Key::pageUp;
    case KEY_NPAGE:
        return Key::pageDown;
    case ctrlHome:
        return Key::first;
    case ctrlEnd:
        return Key::last;
    case KEY_F(1):
        return Key::help;
    case KEY_F(2):
    case control('I'):
        return Key::entry;
    case KEY_F(3):
        return Key::details;
    case KEY_F(4):
        return Key::copy;
    case KEY_F(5):
        return Key::dialTyped;
    case KEY_F(10):
    case control('C'):
        return Key::leave;
    case control('Z'):
        return Key::suspend;
    case control('L'):
        return Key::redraw;
    case KEY_RESIZE:
        return Key::resize;
    default:
        return std::nullopt;
    }
}

} // namespace wideseek
