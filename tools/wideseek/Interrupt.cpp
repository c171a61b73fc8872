#include "tools/wideseek/Interrupt.h"

#include <atomic>
#include <csignal>
#include <termios.h>
#include <unistd.h>

namespace wideseek {

namespace {

std::atomic<int> caught{0};
static_assert(std::atomic<int>::is_always_lock_free, "the signal handler writes it");

constexpr unsigned int patience = 3; // seconds

termios terminal{}; // as it was found
std::atomic<bool> hasTerminal{false};

// Handlers call nothing that is not async-signal-safe (POSIX, signal-safety).
void remember(int signal) {
    caught = signal;
    alarm(patience);
}

void endAtOnce(int /*signal*/) {
    if (hasTerminal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &terminal);
    }
    _exit(128 + caught);
}

} // namespace

void catchInterrupts() {
    hasTerminal = tcgetattr(STDIN_FILENO, &terminal) == 0;
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    action.sa_handler = endAtOnce;
    sigaction(SIGALRM, &action, nullptr);
}

int interruptedBy() {
    return caught;
}

} // namespace wideseek
