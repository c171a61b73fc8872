// Which key a code of ncurses stands for, and which bytes ncurses is to make such codes of.
//
// A terminal's description names one sequence for each key, yet terminals send others as well: those of another mode
// (SS3 for CSI), those of another terminal that they imitate, and those of a numeric keypad, which descriptions leave
// out. One thread.
#pragma once

#include <optional>

namespace wideseek {

enum class Key {
    character, // Input::text holds it, UTF-8
    eraseBefore,
    eraseAfter,
    eraseWord,
    eraseToBegin,
    eraseToEnd,
    left,
    right,
    toBegin, // of the line that is typed
    toEnd,
    wordLeft,
    wordRight,
    escape,
    enter,
    up,
    down,
    pageUp,
    pageDown,
    first,   // Ctrl-Home
    last,    // Ctrl-End
    help,    // F1
    entry,   // F2 or Tab
    details, // F3
    copy,    // F4
    dialTyped, // F5
    leave,   // F10 or Ctrl-C, or the terminal has gone away
    suspend, // Ctrl-Z
    redraw,  // Ctrl-L
    resize,
    click,       // Input::line tells where
    doubleClick, // the second of two clicks on one line
    wheelUp,
    wheelDown,
};

// Codes beyond those of ncurses, for what it makes no keys of.
struct OwnCode {
    static constexpr int pasteBegin = 0x1000;
    static constexpr int pasteEnd = 0x1001;
    static constexpr int keypad = 0x1100; // plus the character on the key
};

// Makes ncurses know the sequences that the terminal's description need not have.
void defineSequences();

// Nothing for what is no key: characters, the marks of a paste, the mouse.
std::optional<Key> keyOf(int code);

// The character of a key of the numeric keypad.
std::optional<char> keypadCharacter(int code);

} // namespace wideseek
