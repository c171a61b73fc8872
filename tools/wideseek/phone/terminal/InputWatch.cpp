#include "tools/wideseek/phone/terminal/InputWatch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <iterator>
#include <system_error>
#include <utility>

namespace wideseek {

namespace {

// Far more armings than there can be, so that both may be counted in one number.
constexpr std::uint64_t endOfWatch = std::uint64_t(1) << 62U;

} // namespace

InputWatch::InputWatch(std::function<void()> wake) : m_wake(std::move(wake)), m_armed(eventfd(0, EFD_CLOEXEC)) {
    if (m_armed.number() < 0) {
        throw std::system_error(errno, std::generic_category(), "the terminal cannot be watched");
    }
    m_thread = std::thread([this] { watch(); });
}

InputWatch::~InputWatch() {
    eventfd_write(m_armed.number(), endOfWatch);
    m_thread.join();
}

void InputWatch::arm() {
    eventfd_write(m_armed.number(), 1);
}

void InputWatch::watch() {
    bool isArmed = false;
    for (;;) {
        // A negative descriptor is passed over (POSIX, poll).
        struct pollfd files[] = {{m_armed.number(), POLLIN, 0}, {isArmed ? STDIN_FILENO : -1, POLLIN, 0}};
        if (poll(files, std::size(files), -1) < 0) {
            continue;
        }
        if (files[0].revents != 0) {
            eventfd_t armings = 0;
            if (eventfd_read(m_armed.number(), &armings) == 0 && armings >= endOfWatch) {
                return;
            }
            isArmed = true;
        } else if (files[1].revents != 0) {
            isArmed = false;
            m_wake();
        }
    }
}

} // namespace wideseek
