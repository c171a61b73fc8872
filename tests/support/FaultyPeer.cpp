#include "tests/support/FaultyPeer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int newSocket(int flags = 0) {
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
}

bool connectTo(int socket, int port) {
    const sockaddr_in address = loopback(port);
    return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

int bindFree(int socket) {
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "no free loopback port");
    }
    return ntohs(address.sin_port);
}

} // namespace

int freePort() {
    const int socket = newSocket();
    const int port = bindFree(socket);
    ::close(socket);
    return port;
}

bool answersAt(int port) {
    const int socket = newSocket();
    const bool answers = connectTo(socket, port);
    ::close(socket);
    return answers;
}

FaultyPeer::FaultyPeer(Fault fault, int target)
    : m_fault(fault), m_target(target), m_listener(newSocket()), m_port(bindFree(m_listener)) {
    ::listen(m_listener, fault == Fault::full ? 0 : 16);
    if (fault == Fault::full) {
        for (int i = 0; i < 4; ++i) {
            m_links.push_back({.client = newSocket(SOCK_NONBLOCK)});
            connectTo(m_links.back().client, m_port);
        }
        return;
    }
    m_thread = std::thread([this] { serve(); });
}

FaultyPeer::~FaultyPeer() {
    m_stopping = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    for (const Link& link : m_links) {
        ::close(link.client);
        ::close(link.server);
    }
    ::close(m_listener);
}

void FaultyPeer::serve() {
    while (!m_stopping) {
        std::vector<pollfd> watched = {{m_listener, POLLIN, 0}};
        const bool holding = m_holding;
        for (const Link& link : m_links) {
            watched.push_back({link.client, POLLIN, 0});
            watched.push_back({holding ? -1 : link.server, POLLIN, 0});
        }
        ::poll(watched.data(), watched.size(), 10);
        const bool cut = m_cutNow.exchange(false);
        std::size_t i = 1;
        for (auto link = m_links.begin(); link != m_links.end(); i += 2) {
            const bool open = !cut && (watched[i].revents == 0 || pass(*link, false)) &&
                              (watched[i + 1].revents == 0 || pass(*link, true));
            if (!open) {
                ::close(link->client);
                ::close(link->server);
            }
            link = open ? std::next(link) : m_links.erase(link);
        }
        if (watched[0].revents != 0) {
            accept();
        }
    }
}

void FaultyPeer::accept() {
    Link link{.client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)};
    if (m_fault == Fault::cut) {
        link.server = newSocket();
        connectTo(link.server, m_target);
    }
    m_links.push_back(link);
    ++m_connections;
}

// False: the link is over.
bool FaultyPeer::pass(Link& link, bool fromServer) {
    std::array<char, 4096> buffer{};
    const ssize_t got = ::read(fromServer ? link.server : link.client, buffer.data(), buffer.size());
    if (got <= 0) {
        return false;
    }
    std::size_t size = static_cast<std::size_t>(got);
    if (!fromServer) {
        const std::lock_guard lock(m_mutex);
        m_received.append(buffer.data(), size);
        m_changed.notify_all();
    }
    bool open = true;
    if (fromServer) {
        open = link.sent + size <= m_cutAfter;
        size = std::min({size, m_cutAfter - link.sent, m_stallAfter - link.sent});
        link.sent += size;
    }
    const int to = fromServer ? link.client : link.server;
    return to < 0 || (::send(to, buffer.data(), size, MSG_NOSIGNAL) == static_cast<ssize_t>(size) && open);
}

bool FaultyPeer::waitFor(std::string_view bytes, std::chrono::milliseconds atMost) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, atMost, [&] { return m_received.find(bytes) != std::string::npos; });
}
