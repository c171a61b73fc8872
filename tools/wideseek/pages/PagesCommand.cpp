#include "tools/wideseek/pages/PagesCommand.h"

#include "tools/wideseek/pages/PageServer.h"

#include <csignal>

namespace wideseek {

int servePages(const PagesArguments& arguments) {
    std::signal(SIGPIPE, SIG_IGN);
    return PageServer(phoneOptionsOf(arguments.phone), arguments.abandon).run();
}

} // namespace wideseek
