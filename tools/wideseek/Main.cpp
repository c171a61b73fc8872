// wideseek: the search library at work on a workstation. Each subcommand has a file of its own.

#include "tools/wideseek/CommandLine.h"
#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Interrupt.h"

#include <exception>
#include <iostream>
#include <new>
#include <variant>

namespace {

namespace exitCode = wideseek::exitCode;

int run(const wideseek::Command& command) {
    wideseek::catchInterrupts();
    const int code = command();
    if (const int signal = wideseek::interruptedBy()) {
        return 128 + signal; // as a shell reports it
    }
    if (!std::cout.flush()) {
        std::cerr << "wideseek: the output could not be written\n";
        return exitCode::failure;
    }
    return code;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::variant<wideseek::Command, int> wanted = wideseek::readCommandLine(argc, argv);
        const auto* command = std::get_if<wideseek::Command>(&wanted);
        return command != nullptr ? run(*command) : std::get<int>(wanted);
    } catch (const std::bad_alloc&) {
        std::cerr << "wideseek: there is not enough memory; make the files smaller or raise the limit\n";
        return exitCode::failure;
    } catch (const std::exception& error) {
        std::cerr << "wideseek: " << error.what() << '\n';
        return exitCode::failure;
    }
}
