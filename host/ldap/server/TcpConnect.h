// A TCP connection that can be given up at any moment, name resolution included.
#pragma once

#include "host/ldap/server/Waiter.h"

#include <stdexcept>
#include <string>

namespace host {

// What went wrong, without the peer's name.
class ConnectFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Connects to host (a name or an address, IPv6 without brackets), trying its addresses in turn. Gives a non-blocking
// socket on which a peer that has vanished shows as an error after silence (RFC 5482). Throws ConnectFailure, and
// Stopped through the waiter. The resolver cannot be interrupted: it runs on a thread of its own that is left behind
// when the waiting ends first.
Descriptor connectTcp(const std::string& host, int port, const Waiter& waiter, TimePoint until,
                      std::chrono::milliseconds silence);

} // namespace host
