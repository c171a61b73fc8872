// wideseek phone: the phone's search screen on the terminal.
#pragma once

#include "tools/wideseek/Command.h"

namespace wideseek {

Command addPhoneCommand(CLI::App& application);

} // namespace wideseek
