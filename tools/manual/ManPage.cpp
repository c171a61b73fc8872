#include "tools/manual/ManPage.h"

#include <cctype>
#include <map>
#include <sstream>

namespace wideseek::manual {

namespace {

// Text of which nothing is taken for a request or an escape of roff, and whose hyphens may be copied into a shell.
std::string plain(const std::string& text) {
    std::string safe;
    bool lineBegins = true;
    for (const char c : text) {
        if (lineBegins && (c == '.' || c == '\'')) {
            safe += "\\&";
        }
        lineBegins = c == '\n';
        switch (c) {
        case '\\':
            safe += "\\e";
            break;
        case '-':
            safe += "\\-";
            break;
        case '\'':
            safe += "\\(aq";
            break;
        case '"':
            safe += "\\(dq";
            break;
        default:
            safe += c;
        }
    }
    return safe;
}

std::string bold(const std::string& text) {
    return "\\fB" + plain(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + plain(text) + "\\fR";
}

std::string lowerFirst(std::string text) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return text;
}

// "wideseek type [OPTIONS] KEY..."
std::string usage(const std::string& names, const Command& command) {
    std::string line = bold(names);
    if (!command.options.empty()) {
        line += " [" + italic("OPTIONS") + "]";
    }
    for (const Option& argument : command.arguments) {
        const std::string shown = italic(argument.value) + (argument.repeated ? "..." : "");
        line += argument.required ? " " + shown : " [" + shown + "]";
    }
    return line;
}

void writeParagraphs(std::ostream& page, const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    bool paragraphBegins = true;
    while (std::getline(lines, line)) {
        if (line.empty()) {
            paragraphBegins = true;
            continue;
        }
        if (paragraphBegins) {
            page << ".PP\n";
        }
        paragraphBegins = false;
        page << plain(line) << '\n';
    }
}

void writeOption(std::ostream& page, const Option& option) {
    page << ".TP\n";
    std::string names;
    for (const std::string& name : option.names) {
        names += (names.empty() ? "" : ", ") + bold(name);
    }
    if (names.empty()) {
        names = italic(option.value);
    } else if (option.valueOptional && !option.value.empty()) {
        names += "[" + bold("=") + italic(option.value) + "]";
    } else if (!option.value.empty()) {
        names += " " + italic(option.value);
    }
    page << names << '\n' << plain(option.description) << '\n';
}

void writeOptions(std::ostream& page, const Command& command) {
    for (const Option& argument : command.arguments) {
        writeOption(page, argument);
    }
    for (const Option& option : command.options) {
        writeOption(page, option);
    }
}

// Variable and the option that it stands for.
std::map<std::string, std::string> environmentOf(const Command& tool) {
    std::map<std::string, std::string> variables;
    for (const Command& command : tool.commands) {
        for (const Option& option : command.options) {
            if (!option.environment.empty()) {
                variables[option.environment] = option.names.back();
            }
        }
    }
    return variables;
}

} // namespace

std::string manPage(const Command& tool, const std::string& version) {
    std::ostringstream page;
    page << R"(.\" Made from the tool's definition of its command line.)"
         << "\n.TH WIDESEEK 1 \"\" \"" << plain(version) << "\" \"User Commands\"\n.SH NAME\n"
         << tool.name << " \\- " << plain(lowerFirst(tool.description)) << '\n';

    page << ".SH SYNOPSIS\n.nf\n" << bold(tool.name) << '\n';
    for (const Command& command : tool.commands) {
        page << usage(tool.name + " " + command.name, command) << '\n';
    }
    page << ".fi\n";

    page << ".SH DESCRIPTION\n" << plain(tool.description) << ".\n";
    writeParagraphs(page, tool.footer);
    writeOptions(page, tool);

    page << ".SH COMMANDS\n";
    for (const Command& command : tool.commands) {
        page << ".SS \"" << usage(tool.name + " " + command.name, command) << "\"\n"
             << plain(command.description) << ".\n";
        writeParagraphs(page, command.footer);
        writeOptions(page, command);
    }

    page << ".SH ENVIRONMENT\n";
    for (const auto& [variable, option] : environmentOf(tool)) {
        page << ".TP\n" << bold(variable) << "\nstands for " << bold(option) << " where that is not given.\n";
    }
    return page.str();
}

} // namespace wideseek::manual
