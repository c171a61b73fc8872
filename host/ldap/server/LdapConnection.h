// One connection to an LDAP server: made, bound, and asked. All of it belongs to one worker thread.
//
// libldap is only given requests to send and asked for what has arrived; the waiting is done by the worker's Waiter,
// with one exception (the TLS handshake, under a SocketCutter). So nothing here outlasts the time that is given.
#pragma once

#include "host/ldap/server/ServerLdap.h"
#include "host/ldap/server/Waiter.h"

#include <ldap.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What went wrong and what to check, for people.
class LdapFailure : public std::runtime_error {
public:
    enum class Kind {
        other,
        lost,    // the connection broke, so that a fresh one may do better
        refused, // the server does not take the password, and may be counting
    };

    explicit LdapFailure(const std::string& problem, Kind kind = Kind::other)
        : std::runtime_error(problem), m_kind(kind) {}
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

struct LdapAddress {
    bool tls = false; // from the first byte
    std::string host; // IPv6 without brackets
    int port = 0;
    std::string url; // scheme, host and port, nothing else
};

// Takes ldap://host[:port] and ldaps://host[:port]. Throws std::invalid_argument saying what is allowed.
LdapAddress parseLdapUrl(const std::string& url);

class LdapConnection {
public:
    using Message = std::unique_ptr<LDAPMessage, int (*)(LDAPMessage*)>;

    // Connects, secures and binds. Throws LdapFailure, and Stopped through the waiter. options, address and waiter
    // outlive it.
    LdapConnection(const ServerLdapOptions& options, const LdapAddress& address, const Waiter& waiter, TimePoint until);

    // To wait for (POLLIN) while idle or after receive gave nothing.
    int descriptor() const { return m_descriptor; }

    // To be asked when something arrives while no request runs. False: the connection is of no more use. What a server
    // says unasked is that it closes the connection (RFC 4511, section 4.4.1).
    bool isAlive();

    // Sends a search; seconds is the server's time limit. The id is for receive and abandon. Throws LdapFailure.
    int search(const std::string& filter, const std::vector<std::string>& attributes, int sizeLimit, long seconds);

    // The next message of this request that has arrived, or null. Does not wait. Throws LdapFailure.
    Message receive(int id);

    void abandon(int id);

    // The values of an attribute, in whatever case the server writes its name, of an entry that was received: an array
    // that a null pointer ends, or null when there are none.
    using Values = std::unique_ptr<berval*, void (*)(berval**)>;
    Values values(LDAPMessage& entry, const std::string& attribute) const;

    // The result code of a last message, with the server's own words about it.
    struct Result {
        int code = 0;
        std::string text;
    };
    Result result(LDAPMessage& last) const;

private:
    void configure();
    void startTls(TimePoint until);
    void shakeHands(TimePoint until);
    bool takesAnyCertificate(TimePoint until) const;
    std::string mistrust() const;
    void bind(TimePoint until);
    Result await(int id, std::string_view step, TimePoint until);
    static LdapFailure lost();

    struct Unbind {
        void operator()(LDAP* handle) const { ldap_unbind_ext(handle, nullptr, nullptr); }
    };

    const ServerLdapOptions& m_options;
    const LdapAddress& m_address;
    const Waiter& m_waiter;
    std::unique_ptr<LDAP, Unbind> m_handle;
    int m_descriptor = -1; // the handle's
};

} // namespace host
