// Painting text on the terminal: made harmless (Text.h), measured and cut by its width on the screen.
//
//     paint::put(line, 0, paint::fitted(name, 20), A_BOLD);
//
// A Terminal exists. One thread.
#pragma once

#include "tools/wideseek/phone/terminal/Curses.h"

#include <string>
#include <string_view>
#include <vector>

namespace wideseek::paint {

inline constexpr wchar_t ellipsis = L'\u2026';

// Harmless text in the terminal's characters, and the columns that such text takes.
std::wstring wide(std::string_view text);
int widthOf(std::wstring_view text);

// As many characters from the front as fit.
std::wstring_view front(std::wstring_view text, int columns);

// Exactly this many columns (at least 1): filled with blanks, or cut with an ellipsis.
std::wstring fitted(std::string_view text, int columns);

// The end of a text that grows at its end, in at most this many columns.
std::wstring tail(std::string_view text, int columns);

// A line on as many lines of this width as it needs, at least one: words are kept whole where they fit. All but the first
// begin at this column, which is less than half of the width.
std::vector<std::wstring> wrapped(std::string_view line, int columns, int indent);

// Puts text on the screen, as far as it is on it.
void put(int line, int column, std::wstring_view text, attr_t attributes = A_NORMAL);
void putRight(int line, std::string_view text, attr_t attributes);

// A rule from one side to the other.
void putRule(int line);

// A foreground on the terminal's own background. Never the only sign, as terminals and people do without it.
attr_t colour(short foreground);

} // namespace wideseek::paint
