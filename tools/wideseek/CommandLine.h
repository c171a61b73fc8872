// What the tool was asked to do. The subcommands themselves know nothing of how their arguments are written.
//
// The command line is defined in one place. Its help, its manual page and its completion in a shell (tools/manual) are
// all made from that definition.
#pragma once

#include <functional>
#include <variant>

namespace CLI {
class App;
}

namespace wideseek {

// Runs the chosen subcommand; as the subcommand's own function.
using Command = std::function<int()>;

// Gives a new parser its subcommands and options. A subcommand that is parsed is put into chosen, which outlives the
// parser.
void defineCommandLine(CLI::App& application, Command& chosen);

// The command, or the exit code when there is none to run: after help and version, and for a usage error, which have
// been printed. Without arguments it is "phone" on a terminal, else "demo".
std::variant<Command, int> readCommandLine(int argc, char** argv);

} // namespace wideseek
