#include "tools/wideseek/Interrupt.h"

#include <atomic>
#include <csignal>

namespace wideseek {

namespace {

std::atomic<int> caught{0};
static_assert(std::atomic<int>::is_always_lock_free, "the signal handler writes it");

void remember(int signal) {
    caught = signal;
}

} // namespace

void catchInterrupts() {
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int interruptedBy() {
    return caught;
}

} // namespace wideseek
