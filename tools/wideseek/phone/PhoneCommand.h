// wideseek phone: the phone's search screen on the terminal.
#pragma once

#include "tools/wideseek/PhoneArguments.h"

namespace wideseek {

// Gives the exit code; throws std::exception for what keeps the phone from starting.
int showPhone(const PhoneArguments& arguments);

} // namespace wideseek
