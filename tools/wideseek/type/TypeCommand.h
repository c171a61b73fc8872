// wideseek type: types keys one after another and prints each page.
#pragma once

#include "tools/wideseek/PhoneArguments.h"

#include <string>
#include <vector>

namespace wideseek {

struct TypeArguments {
    PhoneArguments phone;
    std::vector<std::string> keys;
    int from = 0;
    int count = 10;
    int pause = 0; // ms before each further key
    bool trace = false;
    bool json = false;
};

// Gives the exit code; throws std::exception for what keeps the phone from starting.
int typeKeys(const TypeArguments& arguments);

} // namespace wideseek
