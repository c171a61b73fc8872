// One subcommand of the tool: how its file hands it to Main.cpp.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace wideseek {

namespace exitCode {
constexpr int success = 0;
constexpr int failure = 1;
constexpr int usage = 2;
} // namespace exitCode

struct Command {
    CLI::App* parser = nullptr; // belongs to the application that it was added to
    std::function<int()> run;   // gives the exit code; throws std::exception for what ends it
};

} // namespace wideseek
