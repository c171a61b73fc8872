#include "host/ldap/server/TcpConnect.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace host {

namespace {

using AddressList = std::unique_ptr<addrinfo, void (*)(addrinfo*)>;

// One name being resolved. The resolver's thread and the waiting one each keep it alive; what is in it is read after
// `finished`, which comes after it was written.
struct Resolution {
    std::string host;
    std::string port;
    Signal finished;
    int error = 0;
    AddressList addresses{nullptr, [](addrinfo* list) { ::freeaddrinfo(list); }};

    void run(int flags) {
        addrinfo hints{};
        hints.ai_socktype = SOCK_STREAM;
        hints.ai_flags = flags | AI_NUMERICSERV;
        addrinfo* found = nullptr;
        error = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
        addresses.reset(found);
    }
};

AddressList resolve(const std::string& host, int port, const Waiter& waiter, TimePoint until) {
    const auto resolution = std::make_shared<Resolution>();
    resolution->host = host;
    resolution->port = std::to_string(port);
    resolution->run(AI_NUMERICHOST);
    if (resolution->error != 0) {
        std::thread([resolution] {
            resolution->run(0);
            resolution->finished.set();
        }).detach();
        if (!waiter.waitReady(resolution->finished.descriptor(), POLLIN, until)) {
            throw ConnectFailure("the name was not resolved in time; check [ldap] url and the DNS server");
        }
        resolution->finished.clear();
    }
    if (resolution->error != 0) {
        throw ConnectFailure(std::string("the name cannot be resolved (") + ::gai_strerror(resolution->error) +
                             "); check [ldap] url and the DNS server");
    }
    return std::move(resolution->addresses);
}

void watchPeer(int socket, std::chrono::milliseconds silence) {
    const int on = 1;
    const auto limit = static_cast<unsigned>(silence.count());
    ::setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ::setsockopt(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, &limit, sizeof limit);
}

// 0, or what connect(2) failed with; ETIMEDOUT when the time has come.
int connectSocket(int socket, const addrinfo& address, const Waiter& waiter, TimePoint until) {
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0) {
        return 0;
    }
    if (errno != EINPROGRESS && errno != EINTR) {
        return errno;
    }
    if (!waiter.waitReady(socket, POLLOUT, until)) {
        return ETIMEDOUT;
    }
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

} // namespace

Descriptor connectTcp(const std::string& host, int port, const Waiter& waiter, TimePoint until,
                      std::chrono::milliseconds silence) {
    const AddressList addresses = resolve(host, port, waiter, until);
    int error = EADDRNOTAVAIL;
    int left = 0;
    for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next) {
        ++left;
    }
    for (const addrinfo* address = addresses.get(); address != nullptr; address = address->ai_next, --left) {
        Descriptor socket(::socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (socket.number() < 0) {
            error = errno;
            continue;
        }
        watchPeer(socket.number(), silence);
        const TimePoint now = std::chrono::steady_clock::now();
        error = connectSocket(socket.number(), *address, waiter, now + (until - now) / left);
        if (error == 0) {
            return socket;
        }
    }
    throw ConnectFailure("cannot connect (" + std::generic_category().message(error) +
                         "); check that the server runs, that [ldap] url names its host and port, and the network");
}

} // namespace host
