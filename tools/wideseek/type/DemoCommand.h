// wideseek demo: what the search does, shown on the sample phone to someone who sees it for the first time.
#pragma once

#include "tools/wideseek/PhoneArguments.h"

namespace wideseek {

// Gives the exit code; throws std::exception for what keeps the phone from starting.
int showDemo(const PhoneArguments& arguments);

} // namespace wideseek
