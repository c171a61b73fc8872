// What a terminal must be able to do for the phone to be shown on it, and under which name it is known here.
//
// Before there are threads: the locale is the process's.
#pragma once

#include <string>

namespace wideseek {

// Chooses a locale in which text is UTF-8: the environment's, or else one that nearly every system has. Throws
// std::runtime_error when there is none.
void chooseUtf8Locale();

// The type that standard input and output are to be used as: TERM, or, where that is not known here, the known type
// that it is named after ("tmux-direct": tmux) or that terminals of its name understand ("ghostty": xterm-256color).
// Throws std::runtime_error with what to do when they are no terminal, when nothing like it is known, or when it cannot
// place a cursor.
std::string usableTerminalType();

} // namespace wideseek
