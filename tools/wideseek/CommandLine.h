// What the tool was asked to do. The subcommands themselves know nothing of how their arguments are written.
#pragma once

#include <functional>
#include <variant>

namespace wideseek {

// Runs the chosen subcommand; as the subcommand's own function.
using Command = std::function<int()>;

// The command, or the exit code when there is none to run: after help and version, and for a usage error, which have
// been printed. Without arguments it is "phone" on a terminal, else "demo".
std::variant<Command, int> readCommandLine(int argc, char** argv);

} // namespace wideseek
