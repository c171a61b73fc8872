// What kinds of keys there are on the search screen: those that edit what is typed, and those that move over the rows.
#pragma once

#include "tools/wideseek/phone/KeyLine.h"
#include "tools/wideseek/phone/terminal/TerminalKeys.h"

#include <optional>

namespace wideseek {

// How far one turn of the wheel moves.
inline constexpr int wheelRows = 3;

// Nothing for a key that edits nothing.
std::optional<LineEdit> editOf(Key key);

// Whether a key moves the cursor and does nothing else.
bool movesCursor(Key key);

} // namespace wideseek
