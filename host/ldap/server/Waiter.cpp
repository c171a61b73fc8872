#include "host/ldap/server/Waiter.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace host {

namespace {

// For poll(2): whole milliseconds, rounded up so that the time has come afterwards, and never "for ever" by overflow.
int millisecondsUntil(TimePoint until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 3'600'000));
}

} // namespace

Signal::Signal() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (m_descriptor.number() < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

void Signal::set() const {
    const std::uint64_t one = 1;
    // It fails only when the counter is full, and then it is set.
    [[maybe_unused]] const ssize_t written = ::write(descriptor(), &one, sizeof one);
}

void Signal::clear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = ::read(descriptor(), &count, sizeof count);
}

void Waiter::throwIfStopped() const {
    if (m_stopped) {
        throw Stopped();
    }
}

Waiter::Event Waiter::poll(int wakeDescriptor, int descriptor, short events, TimePoint until) const {
    std::array<pollfd, 3> watched{
        {{m_stop.descriptor(), POLLIN, 0}, {wakeDescriptor, POLLIN, 0}, {descriptor, events, 0}}};
    for (;;) {
        const int ready = ::poll(watched.data(), watched.size(), millisecondsUntil(until));
        if (ready < 0 && errno != EINTR && errno != EAGAIN) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        if (ready > 0 && watched[0].revents != 0) {
            throw Stopped();
        }
        if (ready > 0 && watched[1].revents != 0) {
            return Event::woken;
        }
        if (ready > 0) {
            return Event::ready;
        }
        if (std::chrono::steady_clock::now() >= until) {
            return Event::timeout;
        }
    }
}

Waiter::Event Waiter::wait(int descriptor, short events, TimePoint until) const {
    const Event event = poll(m_wake.descriptor(), descriptor, events, until);
    if (event == Event::woken) {
        m_wake.clear();
    }
    return event;
}

bool Waiter::waitReady(int descriptor, short events, TimePoint until) const {
    return poll(-1, descriptor, events, until) == Event::ready;
}

SocketCutter::SocketCutter(const Waiter& waiter, int socket, TimePoint until)
    : m_thread([this, &waiter, socket, until] {
          try {
              if (waiter.waitReady(m_finished.descriptor(), POLLIN, until)) {
                  return;
              }
          } catch (...) { // stopped, or the waiting failed: nobody would cut it any more
          }
          ::shutdown(socket, SHUT_RDWR);
      }) {
}

SocketCutter::~SocketCutter() {
    m_finished.set();
    m_thread.join();
}

} // namespace host
