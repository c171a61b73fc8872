// wideseek check: why a source of a source list is asked, and why another one is not.
#pragma once

#include "tools/wideseek/Command.h"

namespace wideseek {

Command addCheckCommand(CLI::App& application);

} // namespace wideseek
