// A real CardDAV server for the tests: Radicale on a free loopback port, over TLS, with an address book of ann's.
//
// Everything it needs is written to a folder of its own, which goes with it. It ends with the process that started it,
// whatever becomes of that. All operations are for one thread, which must outlive the server.
#pragma once

#include "host/files/TemporaryFolder.h"
#include "tests/support/FaultyPeer.h"

#include <sys/types.h>

#include <filesystem>
#include <string>

struct RadicaleServer {
    // Starts it and waits until it answers. Throws std::runtime_error saying what to do.
    RadicaleServer();
    ~RadicaleServer();
    RadicaleServer(const RadicaleServer&) = delete;
    RadicaleServer& operator=(const RadicaleServer&) = delete;

    // Puts a card of this name and number into the book, or another one in its place.
    void put(const std::string& card, const std::string& name, const std::string& number) const;
    void remove(const std::string& card) const;

    const int port = freePort();
    const std::string url = "https://127.0.0.1:" + std::to_string(port) + "/"; // the book is found from there
    host::TemporaryFolder folder; // with server.pem, its certificate, and password, that of ann
    pid_t process = -1;

private:
    std::filesystem::path pathOf(const std::string& card) const;
};
