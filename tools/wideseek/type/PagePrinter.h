// Pages as people read them.
#pragma once

#include "tools/wideseek/Page.h"

#include <ostream>

namespace wideseek {

// A line that says which page this is, set off in bold if wanted, and its rows in columns.
void printPage(std::ostream& out, const Page& page, bool bold);

// The line alone.
void printPageTitle(std::ostream& out, const Page& page, bool bold);

// True when the standard output is a terminal whose user does not object to colours (NO_COLOR).
bool isBoldWelcome();

} // namespace wideseek
