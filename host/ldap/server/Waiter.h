// How a worker thread waits for a socket and yet ends at once when it is told to.
//
// The worker waits only through this object. Other threads wake it (something new to look at) or stop it (end now). A
// call that cannot be made to wait here, since a library blocks in it, is put under a SocketCutter.
#pragma once

#include "host/files/Descriptor.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace host {

using TimePoint = std::chrono::steady_clock::time_point;

// An eventfd: set stays set until it is cleared. Any thread. Throws std::system_error when the process has no
// descriptor left.
class Signal {
public:
    Signal();
    void set() const;
    void clear() const;
    int descriptor() const { return m_descriptor.number(); }

private:
    Descriptor m_descriptor;
};

// Thrown on the worker thread once stop was called.
struct Stopped {};

class Waiter {
public:
    enum class Event { ready, woken, timeout };

    // Any thread.
    void wake() const { m_wake.set(); }
    void stop() const {
        m_stopped = true;
        m_stop.set();
    }

    // Worker thread, where it works for long without waiting: costs next to nothing. Throws Stopped.
    void throwIfStopped() const;

    // Worker thread: waits until descriptor (-1: none) is ready for events (of poll(2); errors count as ready),
    // somebody has called wake since the last time, or the time has come. Throws Stopped.
    Event wait(int descriptor, short events, TimePoint until) const;

    // The same, deaf to wake. False: the time has come.
    bool waitReady(int descriptor, short events, TimePoint until) const;

private:
    friend class SocketCutter;

    Event poll(int wakeDescriptor, int descriptor, short events, TimePoint until) const;

    mutable std::atomic<bool> m_stopped = false;
    Signal m_wake;
    Signal m_stop;
};

// While it lives: shuts a socket down when the time has come or the waiter is stopped, so that a library call that
// blocks in that socket comes back. It watches on a thread of its own, which ends with it.
class SocketCutter {
public:
    SocketCutter(const Waiter& waiter, int socket, TimePoint until);
    ~SocketCutter();
    SocketCutter(const SocketCutter&) = delete;
    SocketCutter& operator=(const SocketCutter&) = delete;

private:
    Signal m_finished;
    std::thread m_thread;
};

} // namespace host
