// wideseek check: explains a source list, and looks through the phone that it belongs to.
#pragma once

#include <string>

namespace wideseek {

struct CheckArguments {
    std::string file;    // a source list, which alone is looked at; empty: the whole phone
    std::string root;    // empty: the default
    bool network = true; // false: no server is asked
    bool json = false;
};

// Gives the exit code.
int check(const CheckArguments& arguments);

} // namespace wideseek
