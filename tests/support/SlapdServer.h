// A real LDAP server for the tests: slapd on free loopback ports, with some thousand people below dc=example,dc=com.
//
// Everything it needs is written to a folder of its own, which goes with it. It ends with the process that started it,
// whatever becomes of that. All operations are for one thread, which must outlive the server.
#pragma once

#include "host/files/TemporaryFolder.h"
#include "tests/support/FaultyPeer.h"

#include <sys/types.h>

#include <string>

struct SlapdServer {
    // Starts it and waits until it answers. Throws std::runtime_error saying what to do.
    SlapdServer();
    ~SlapdServer();
    SlapdServer(const SlapdServer&) = delete;
    SlapdServer& operator=(const SlapdServer&) = delete;

    const int port = freePort();
    const int tlsPort = freePort();
    const std::string url = "ldap://127.0.0.1:" + std::to_string(port);
    const std::string tlsUrl = "ldaps://127.0.0.1:" + std::to_string(tlsPort);
    const host::TemporaryFolder folder; // with server.pem, its own certificate and its issuer's
    pid_t process = -1;
};
