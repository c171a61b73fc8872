// The manual page of the tool, in the man(7) macros.
#pragma once

#include "tools/manual/CommandTable.h"

#include <string>

namespace wideseek::manual {

// The page of section 1; version stands at its foot.
std::string manPage(const Command& tool, const std::string& version);

} // namespace wideseek::manual
