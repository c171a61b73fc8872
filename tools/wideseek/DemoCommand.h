// wideseek demo: what the search does, shown on the sample phone to someone who sees it for the first time.
#pragma once

#include "tools/wideseek/Command.h"

namespace wideseek {

Command addDemoCommand(CLI::App& application);

} // namespace wideseek
