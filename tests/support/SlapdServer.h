// A real LDAP server for the tests: slapd on free loopback ports, with some thousand people below dc=example,dc=com.
//
// Everything it needs is written to a folder of its own, which goes with it. It ends with the process that started it,
// whatever becomes of that. All operations are for one thread, which must outlive the server.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

class SlapdServer {
public:
    static constexpr int people = 3000; // "Person 0000" and so on, beside those with odd names and numbers

    // Starts it and waits until it answers. Throws std::runtime_error saying what to do.
    SlapdServer();
    ~SlapdServer();
    SlapdServer(const SlapdServer&) = delete;
    SlapdServer& operator=(const SlapdServer&) = delete;

    // On the same ports, with the same people.
    void restart();

    int port() const { return m_port; }
    int tlsPort() const { return m_tlsPort; }
    std::string url() const { return "ldap://127.0.0.1:" + std::to_string(m_port); }
    std::string tlsUrl() const { return "ldaps://127.0.0.1:" + std::to_string(m_tlsPort); }
    std::string certificate() const { return (m_folder / "server.pem").string(); } // its own and its issuer's
    const std::filesystem::path& folder() const { return m_folder; }

private:
    void writeFiles();
    void start();
    void stop();

    std::filesystem::path m_folder;
    int m_port;
    int m_tlsPort;
    pid_t m_process = -1;
};
