// Owns a file descriptor and closes it in the end.
//
//     const Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
//     if (file.number() < 0) ... // errno says why
#pragma once

#include <pthread.h>
#include <signal.h>
#include <unistd.h>
#include <utility>

namespace host {

class Descriptor {
public:
    // -1: none.
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    Descriptor(Descriptor&& other) noexcept : m_number(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }

    int number() const { return m_number; }

    // Gives it up without closing it.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

// From now on the calling thread gets an error from a connection that has been closed, and no signal.
inline void blockBrokenPipe() {
    sigset_t brokenPipe;
    ::sigemptyset(&brokenPipe);
    ::sigaddset(&brokenPipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
}

} // namespace host
