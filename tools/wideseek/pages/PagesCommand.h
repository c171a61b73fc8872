// wideseek pages: the search for another program, which writes requests and reads pages.
#pragma once

#include "tools/wideseek/PhoneArguments.h"

namespace wideseek {

struct PagesArguments {
    PhoneArguments phone;
    bool abandon = false; // at the end of input, what is outstanding
};

// Gives the exit code; throws std::exception for what keeps the phone from starting.
int servePages(const PagesArguments& arguments);

} // namespace wideseek
