#include "tools/manual/Completion.h"

#include <sstream>

namespace wideseek::manual {

namespace {

// Text inside single quotes, in which the characters of special are escaped.
std::string quoted(const std::string& text, const std::string& special) {
    std::string safe;
    for (const char c : text) {
        if (c == '\'') {
            safe += "'\\''";
        } else {
            if (special.find(c) != std::string::npos) {
                safe += '\\';
            }
            safe += c;
        }
    }
    return safe;
}

// What offers a value of this kind; a blank: nothing can be offered.
std::string offersOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::folder:
        return "_files -/";
    case ValueKind::file:
        return "_files";
    default:
        return " ";
    }
}

std::string valueOf(const Option& option) {
    return (option.names.empty() && option.required ? ":" : "::") + option.value + ":" + offersOf(option.kind);
}

void writeOption(std::ostream& script, const Option& option, const std::string& indent) {
    const std::string description = "[" + quoted(firstSentence(option.description), "[]\\") + "]";
    for (const std::string& name : option.names) {
        std::string argument = name;
        if (!option.value.empty()) {
            argument += option.valueOptional ? "=-" : "=";
        }
        argument += description;
        if (!option.value.empty()) {
            argument += (option.valueOptional ? "::" : ":") + option.value + ":" + offersOf(option.kind);
        }
        script << " \\\n" << indent << "'" << argument << "'";
    }
}

void writeArguments(std::ostream& script, const Command& command) {
    for (const Option& argument : command.arguments) {
        script << " \\\n                '"
               << (argument.repeated ? "*:" + argument.value + ":" + offersOf(argument.kind) : valueOf(argument))
               << "'";
    }
}

} // namespace

std::string zshCompletion(const Command& tool) {
    std::ostringstream script;
    script << "#compdef wideseek\n# Made from the tool's definition of its command line.\n\n"
              "_wideseek() {\n    local curcontext=$curcontext state line commands\n    commands=(\n";
    for (const Command& command : tool.commands) {
        script << "        '" << command.name << ":" << quoted(firstSentence(command.description), ":\\") << "'\n";
    }
    script << "    )\n    _arguments -C";
    for (const Option& option : tool.options) {
        writeOption(script, option, "        ");
    }
    script << " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n    case $state in\n"
              "    command) _describe command commands ;;\n    argument)\n        case $line[1] in\n";
    for (const Command& command : tool.commands) {
        script << "        " << command.name << ")\n            _arguments";
        for (const Option& option : command.options) {
            writeOption(script, option, "                ");
        }
        writeArguments(script, command);
        script << "\n            ;;\n";
    }
    script << "        esac\n        ;;\n    esac\n}\n\n_wideseek \"$@\"\n";
    return script.str();
}

} // namespace wideseek::manual
