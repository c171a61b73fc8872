// wideseek: the search library at work on a workstation. Each subcommand has a file of its own.

#include "tools/wideseek/Arguments.h"
#include "tools/wideseek/CheckCommand.h"
#include "tools/wideseek/DemoCommand.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/PhoneCommand.h"
#include "tools/wideseek/TypeCommand.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

namespace exitCode = wideseek::exitCode;

// Without arguments: what a newcomer can type on, or watch.
std::string defaultCommand() {
    return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) ? "phone" : "demo";
}

int runCommand(const wideseek::Command& command) {
    wideseek::catchInterrupts();
    const int code = command.run();
    if (const int signal = wideseek::interruptedBy()) {
        return 128 + signal; // as a shell reports it
    }
    if (!std::cout.flush()) {
        std::cerr << "wideseek: the output could not be written\n";
        return exitCode::failure;
    }
    return code;
}

int parseAndRun(int argc, char** argv) {
    CLI::App application("Contact search behind a phone's search box, on a workstation", "wideseek");
    application.set_version_flag("--version", "wideseek " WIDESEEK_VERSION);
    application.require_subcommand(1);
    const std::vector<wideseek::Command> commands = {
        wideseek::addPhoneCommand(application), wideseek::addDemoCommand(application),
        wideseek::addTypeCommand(application), wideseek::addCheckCommand(application)};
    try {
        application.parse(argc > 1 ? wideseek::argumentsOf(argc, argv) : std::vector{defaultCommand()});
    } catch (const CLI::ParseError& error) {
        return application.exit(error) == 0 ? exitCode::success : exitCode::usage;
    }
    const auto chosen =
        std::find_if(commands.begin(), commands.end(), [](const auto& command) { return command.parser->parsed(); });
    return runCommand(*chosen);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return parseAndRun(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "wideseek: " << error.what() << '\n';
        return exitCode::failure;
    }
}
