// wideseek check: explains a source list.
#pragma once

#include <string>

namespace wideseek {

struct CheckArguments {
    std::string file; // empty: the one of the phone's root
    std::string root; // empty: the default
    bool json = false;
};

// Gives the exit code.
int checkFile(const CheckArguments& arguments);

} // namespace wideseek
