#include "tools/manual/CommandTable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <stdexcept>

namespace wideseek::manual {

namespace {

// The name of an option's value, as the help shows it: of "[=FILE]" it is "FILE".
std::string valueName(const CLI::Option& option) {
    if (option.get_positional()) {
        return option.get_name(true);
    }
    std::string text = option.get_option_text();
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == '[' || c == ']' || c == '='; }),
               text.end());
    return text.empty() && option.get_items_expected_max() > 0 ? option.get_type_name() : text;
}

ValueKind kindOf(const std::string& value) {
    if (value.empty()) {
        return ValueKind::none;
    }
    if (value == "DIR") {
        return ValueKind::folder;
    }
    return value == "FILE" ? ValueKind::file : ValueKind::other;
}

Option describe(const CLI::Option& option) {
    Option described;
    for (const std::string& name : option.get_snames()) {
        described.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        described.names.push_back("--" + name);
    }
    described.value = valueName(option);
    described.kind = kindOf(described.value);
    described.valueOptional = option.get_items_expected_min() == 0;
    described.required = option.get_required();
    described.repeated = option.get_items_expected_max() > 1;
    described.description = option.get_description();
    described.environment = option.get_envname();
    return described;
}

} // namespace

Command describe(const CLI::App& parser) {
    Command command{parser.get_name(), parser.get_description(), {}, {}, parser.get_footer(), {}};
    for (const CLI::Option* option : parser.get_options()) {
        if (!option->get_group().empty()) { // else it is hidden
            (option->get_positional() ? command.arguments : command.options).push_back(describe(*option));
        }
    }
    for (const CLI::App* subcommand : parser.get_subcommands([](const CLI::App*) { return true; })) {
        if (!subcommand->get_group().empty()) {
            command.commands.push_back(describe(*subcommand));
            if (!command.commands.back().commands.empty()) {
                throw std::runtime_error(command.commands.back().name +
                                         " has commands of its own; teach tools/manual to show them");
            }
        }
    }
    return command;
}

std::string joined(const std::string& text) {
    std::string line = text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

std::string firstSentence(const std::string& description) {
    const std::string line = joined(description);
    return line.substr(0, line.find(". "));
}

} // namespace wideseek::manual
