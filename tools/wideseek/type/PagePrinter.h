// Pages as people and scripts read them.
#pragma once

#include "tools/wideseek/type/Session.h"

#include <ostream>

namespace wideseek {

// A line that says which page this is, set off in bold if wanted, and its rows in columns.
void printPage(std::ostream& out, const Page& page, bool bold);

// The line alone.
void printPageTitle(std::ostream& out, const Page& page, bool bold);

// One JSON object on one line: "request" (from 1), "key", "from", "count", "total", "late", "ms", "rows". Bytes that
// are not UTF-8 become U+FFFD.
void printPageJson(std::ostream& out, const Page& page);

// True when the standard output is a terminal whose user does not object to colours (NO_COLOR).
bool isBoldWelcome();

} // namespace wideseek
