#include "tools/wideseek/Arguments.h"

#include <algorithm>

namespace wideseek {

namespace {

constexpr char mark = '\x1f';

} // namespace

std::vector<std::string> argumentsOf(int argc, char** argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    for (std::string& argument : arguments) {
        if (argument.ends_with(']')) {
            argument += mark;
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

CLI::Validator asTyped() {
    return CLI::Validator(
        [](std::string& value) {
            if (value.ends_with(std::string("]") + mark)) {
                value.pop_back();
            }
            return std::string();
        },
        "");
}

} // namespace wideseek
