#include "tests/support/FaultyPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

host::Descriptor newSocket(int flags = 0) {
    return host::Descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

// Calls connect or bind for the port on the loopback interface.
bool onLoopback(int (*call)(int, const sockaddr*, socklen_t), int socket, int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return call(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

int bindFree(int socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (!onLoopback(::bind, socket, 0) || ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("no free loopback port");
    }
    return ntohs(address.sin_port);
}

} // namespace

int freePort() {
    return bindFree(newSocket().number());
}

bool answersAt(int port) {
    return onLoopback(::connect, newSocket().number(), port);
}

FaultyPeer::FaultyPeer(Fault fault, int target, std::size_t allowed, std::string flood)
    : m_fault(fault), m_target(target), m_flood(std::move(flood)), m_listener(newSocket()),
      m_port(bindFree(m_listener.number())), m_allowed(allowed) {
    ::listen(m_listener.number(), fault == Fault::full ? 0 : 16);
    for (int i = 0; i < 4 && fault == Fault::full; ++i) {
        host::Descriptor& client = m_links.emplace_back().client;
        client = newSocket(SOCK_NONBLOCK);
        onLoopback(::connect, client.number(), m_port);
    }
    if (fault != Fault::full) {
        m_thread = std::jthread([this](const std::stop_token& stop) { serve(stop); });
    }
}

void FaultyPeer::serve(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        std::vector<pollfd> watched = {{m_listener.number(), POLLIN, 0}};
        for (const Link& link : m_links) {
            const bool stalled = m_fault == Fault::stall && link.sent >= m_allowed;
            watched.push_back({link.client.number(), POLLIN, 0});
            if (m_fault == Fault::flood) {
                watched.push_back({link.heard ? link.client.number() : -1, POLLOUT, 0});
            } else {
                watched.push_back({stalled ? -1 : link.server.number(), POLLIN, 0});
            }
        }
        ::poll(watched.data(), watched.size(), 10);
        const bool cut = m_cutNow.exchange(false);
        auto events = watched.begin() + 1;
        m_links.remove_if([&](Link& link) {
            const bool fromClient = (events++)->revents != 0;
            const bool fromServer = (events++)->revents != 0;
            return cut || (fromClient && !pass(link, false)) ||
                   (fromServer && !(m_fault == Fault::flood ? pour(link) : pass(link, true)));
        });
        if (watched[0].revents != 0) {
            Link& link = m_links.emplace_back();
            link.client = host::Descriptor(::accept4(m_listener.number(), nullptr, nullptr, SOCK_CLOEXEC));
            if (m_target != 0) {
                link.server = newSocket();
                onLoopback(::connect, link.server.number(), m_target);
            }
            ++m_connections;
        }
    }
}

// False: the link is over.
bool FaultyPeer::pass(Link& link, bool fromServer) {
    std::array<char, 4096> buffer{};
    const std::size_t allowed = m_allowed;
    const std::size_t room = fromServer ? allowed - std::min(allowed, link.sent) : buffer.size();
    if (room == 0) {
        return m_fault == Fault::stall;
    }
    const int from = fromServer ? link.server.number() : link.client.number();
    const ssize_t got = ::read(from, buffer.data(), std::min(buffer.size(), room));
    if (got <= 0) {
        return false;
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(got));
    if (fromServer) {
        link.sent += bytes.size();
    } else {
        const std::lock_guard lock(m_mutex);
        m_received += bytes;
        m_changed.notify_all();
        link.heard = true;
    }
    const int to = fromServer ? link.client.number() : link.server.number();
    return to < 0 || ::send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL) == got;
}

// False: the link is over.
bool FaultyPeer::pour(Link& link) const {
    const std::string_view rest = std::string_view(m_flood).substr(link.sent % m_flood.size());
    const ssize_t poured = ::send(link.client.number(), rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    link.sent += poured > 0 ? static_cast<std::size_t>(poured) : 0;
    return poured > 0 || errno == EAGAIN;
}

bool FaultyPeer::waitFor(std::string_view bytes) {
    std::unique_lock lock(m_mutex);
    const auto came = [&] { return m_received.find(bytes) != std::string::npos; };
    return m_changed.wait_for(lock, std::chrono::seconds(20), came);
}
