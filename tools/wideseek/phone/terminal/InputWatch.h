// Wakes whoever waits for keys as soon as there are any on the terminal.
//
// ncurses can only be asked whether something has been typed. The watch waits for it on a thread of its own, which
// reads nothing and calls wake once, until it is armed again:
//
//     InputWatch watch([&] { kernel.post(...); });
//     watch.arm();                                     // after each reading
#pragma once

#include "host/files/Descriptor.h"

#include <functional>
#include <thread>

namespace wideseek {

class InputWatch {
public:
    // wake is called on the watch's thread and must not throw. Throws std::system_error when the system has no thread
    // or no descriptor left.
    explicit InputWatch(std::function<void()> wake);

    // No wake is running when this returns, and none follows.
    ~InputWatch();

    InputWatch(const InputWatch&) = delete;
    InputWatch& operator=(const InputWatch&) = delete;

    // The next byte on the terminal, or one that waits there already, wakes. Any thread.
    void arm();

private:
    void watch();

    std::function<void()> m_wake;
    host::Descriptor m_armed; // an eventfd: counts what the thread has not seen
    std::thread m_thread;
};

} // namespace wideseek
