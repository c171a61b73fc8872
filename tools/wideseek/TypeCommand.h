// wideseek type: keys typed one after another, every page printed as it comes.
#pragma once

#include "tools/wideseek/Command.h"

namespace wideseek {

Command addTypeCommand(CLI::App& application);

} // namespace wideseek
