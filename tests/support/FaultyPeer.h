// A TCP server that misbehaves, for tests of network code. It works on a thread of its own.
#pragma once

#include <atomic>
#include <chrono>
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
        cut,    // passes everything on to another server and back, until it cuts the connection
    };

    // target: the port of the other server.
    explicit FaultyPeer(Fault fault, int target = 0);
    ~FaultyPeer();
    FaultyPeer(const FaultyPeer&) = delete;
    FaultyPeer& operator=(const FaultyPeer&) = delete;

    std::string address() const { return "127.0.0.1:" + std::to_string(m_port); }

    // Cuts a connection once the other server has sent so many bytes through it, from now on. Any thread.
    void cutAfter(std::size_t bytes) { m_cutAfter = bytes; }

    // Lets nothing more through a connection once the other server has sent so many bytes, but leaves it open. Any
    // thread.
    void stallAfter(std::size_t bytes) { m_stallAfter = bytes; }

    // Keeps what the other server sends until it is told to let go. Any thread.
    void hold(bool holding) { m_holding = holding; }

    // Cuts all connections there are. Any thread.
    void cutNow() { m_cutNow = true; }

    // How many connections there were. Any thread.
    int connections() const { return m_connections; }

    // Waits until bytes were received. Any thread.
    bool waitFor(std::string_view bytes, std::chrono::milliseconds atMost);

private:
    struct Link {
        int client = -1;
        int server = -1;
        std::size_t sent = 0;
    };

    void serve();
    void accept();
    bool pass(Link& link, bool fromServer);

    const Fault m_fault;
    const int m_target;
    int m_listener = -1;
    int m_port = 0;
    std::list<Link> m_links; // the thread's, and of a full peer those that fill its queue
    std::atomic<std::size_t> m_cutAfter = SIZE_MAX;
    std::atomic<std::size_t> m_stallAfter = SIZE_MAX;
    std::atomic<bool> m_cutNow = false;
    std::atomic<bool> m_holding = false;
    std::atomic<bool> m_stopping = false;
    std::atomic<int> m_connections = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_received; // under m_mutex
    std::thread m_thread;
};
