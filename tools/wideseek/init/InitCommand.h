// wideseek init: makes a phone's root folder that works at once.
#pragma once

#include <string>
#include <vector>

namespace wideseek {

struct InitArguments {
    std::string folder;            // need not be there; what is in it stays as it is
    std::vector<std::string> from; // files to import (import/ImportCommand.h)
};

// Gives the exit code, that of the import where there is one. Throws std::runtime_error, with what to do, when the
// folder holds a phone already or cannot be written to.
int makePhone(const InitArguments& arguments);

} // namespace wideseek
