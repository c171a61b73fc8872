#include "tools/wideseek/phone/PhoneCommand.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/PhoneApp.h"

#include <unistd.h>

#include <iostream>
#include <stdexcept>

namespace wideseek {

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

} // namespace wideseek
