#include "tools/wideseek/PhoneCommand.h"

#include "tools/wideseek/PhoneApp.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Text.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <memory>
#include <stdexcept>

namespace wideseek {

namespace {

int showPhone(const PhoneArguments& arguments) {
    if (arguments.log == bareFlag && isatty(STDERR_FILENO)) {
        throw std::runtime_error("the log would run through the phone's screen; write it to a file with --log=FILE");
    }
    PhoneApp phone(phoneOptionsOf(arguments));
    for (const std::string& problem : phone.run()) {
        std::cerr << "wideseek: " << printable(problem) << '\n';
    }
    return exitCode::success;
}

} // namespace

Command addPhoneCommand(CLI::App& application) {
    const auto arguments = std::make_shared<PhoneArguments>();
    CLI::App* parser = application.add_subcommand("phone", "Show the phone's search screen on this terminal");
    addPhoneArguments(*parser, *arguments);
    parser->footer("\nF1 shows the keys, F10 or Ctrl-C leaves. 40 columns and 12 lines are enough.");
    return {parser, [arguments] { return showPhone(*arguments); }};
}

} // namespace wideseek
