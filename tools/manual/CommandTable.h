// The command line as plain records, read from its definition (tools/wideseek/CommandLine.h): what the manual page and
// the completions in a shell are made from.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace wideseek::manual {

// What a value is to a shell.
enum class ValueKind { none, folder, file, other };

// An option, or an argument without a dash.
struct Option {
    std::vector<std::string> names; // with their dashes; none for an argument without a dash
    std::string value;              // the value's name, such as "DIR"; empty without a value
    ValueKind kind = ValueKind::none;
    bool valueOptional = false; // a value stands behind "=" or is not there
    bool required = false;
    bool repeated = false; // takes several values
    std::string description;
    std::string environment; // the variable that stands in for the option; often empty
};

struct Command {
    std::string name;
    std::string description;
    std::vector<Option> options;
    std::vector<Option> arguments;
    std::string footer; // paragraphs, with a blank line between them; may be empty
    std::vector<Command> commands;
};

// What a parser defines; what it hides is left out. Throws std::runtime_error for commands within subcommands, which
// nothing here can show.
Command describe(const CLI::App& parser);

// A description's first sentence without its full stop, on one line.
std::string firstSentence(const std::string& description);

// Lines of text as one line.
std::string joined(const std::string& text);

} // namespace wideseek::manual
