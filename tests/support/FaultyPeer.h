// A TCP server that misbehaves, for tests of network code. It works on a thread of its own.
#pragma once

#include "host/files/Descriptor.h"

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

// A loopback port that nobody listens at.
int freePort();

// True when somebody accepts connections at this loopback port.
bool answersAt(int port);

class FaultyPeer {
public:
    enum class Fault {
        silent, // accepts, takes everything, sends nothing
        full,   // its queue is full: connections are neither accepted nor refused
        cut,    // passes everything on to another server and back, and cuts a connection that exceeds what is allowed
        stall,  // the same, but lets nothing more through from the other server, and leaves the connection open
        flood,  // once it has heard something, sends the same bytes over and over
    };

    // target: the port of the other server. allowed: how many bytes it may send through a connection. flood: the bytes
    // of a flood.
    explicit FaultyPeer(Fault fault, int target = 0, std::size_t allowed = SIZE_MAX, std::string flood = {});

    std::string address() const { return "127.0.0.1:" + std::to_string(m_port); }

    // Changes what is allowed, also for the connections there are. Any thread.
    void allow(std::size_t bytes) { m_allowed = bytes; }

    // Cuts all connections there are. Any thread.
    void cutNow() { m_cutNow = true; }

    // How many connections there were. Any thread.
    int connections() const { return m_connections; }

    // Waits until bytes were received; false when they do not come for long. Any thread.
    bool waitFor(std::string_view bytes);

private:
    struct Link {
        host::Descriptor client, server;
        std::size_t sent = 0;
        bool heard = false;
    };

    void serve(const std::stop_token& stop);
    bool pass(Link& link, bool fromServer);
    bool pour(Link& link) const;

    const Fault m_fault;
    const int m_target;
    const std::string m_flood;
    const host::Descriptor m_listener;
    const int m_port;
    std::list<Link> m_links; // the thread's, and of a full peer those that fill its queue
    std::atomic<std::size_t> m_allowed;
    std::atomic<bool> m_cutNow = false;
    std::atomic<int> m_connections = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_received; // under m_mutex
    std::jthread m_thread;
};
