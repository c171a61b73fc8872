#include "host/ldap/server/LdapConnection.h"

#include "host/ldap/server/TcpConnect.h"
#include "host/text/Utf8.h"

#include <fcntl.h>
#include <openldap.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace host {

namespace {

constexpr std::string_view timeIsUp = "; check the server and the network, or raise [ldap] time_limit_ms";

void setBlocking(int descriptor, bool blocking) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    ::fcntl(descriptor, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK);
}

// The server's words as one line of a bounded length, whatever it sent.
std::string presentable(std::string_view words) {
    constexpr std::size_t most = 300;
    std::string shown;
    while (!words.empty() && shown.size() < most) {
        const std::string_view before = words;
        const std::int32_t codePoint = text::takeFirst(words).codePoint;
        const bool control = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0); // or no UTF-8
        shown += control ? "?" : before.substr(0, before.size() - words.size());
    }
    return words.empty() ? shown : shown + " ...";
}

void check(int code, std::string_view step) {
    if (code != LDAP_SUCCESS) {
        throw LdapFailure(std::string(step) + ": " + ldap_err2string(code));
    }
}

} // namespace

LdapAddress parseLdapUrl(const std::string& url) {
    LDAPURLDesc* parsed = nullptr;
    const bool readable = ldap_url_parse(url.c_str(), &parsed) == LDAP_URL_SUCCESS;
    const std::unique_ptr<LDAPURLDesc, void (*)(LDAPURLDesc*)> holder(parsed, ldap_free_urldesc);
    const auto empty = [](const char* text) { return text == nullptr || *text == '\0'; };
    const std::string_view scheme = readable && parsed->lud_scheme != nullptr ? parsed->lud_scheme : "";
    if ((scheme != "ldap" && scheme != "ldaps") || empty(parsed->lud_host) || !empty(parsed->lud_dn) ||
        parsed->lud_attrs != nullptr || !empty(parsed->lud_filter) || parsed->lud_exts != nullptr) {
        throw std::invalid_argument(
            "ldap://host[:port] or ldaps://host[:port] is allowed; base, scope and filters have "
            "keys of their own");
    }
    LdapAddress address;
    address.tls = scheme == "ldaps";
    address.host = parsed->lud_host;
    address.port = parsed->lud_port != 0 ? parsed->lud_port : (address.tls ? LDAPS_PORT : LDAP_PORT);
    const bool brackets = address.host.find(':') != std::string::npos;
    address.url = std::string(scheme) + "://" + (brackets ? "[" + address.host + "]" : address.host) + ":" +
                  std::to_string(address.port);
    return address;
}

LdapConnection::LdapConnection(const ServerLdapOptions& options, const LdapAddress& address, const Waiter& waiter,
                               TimePoint until)
    : m_options(options), m_address(address), m_waiter(waiter) {
    const TimePoint connected = std::min(until, std::chrono::steady_clock::now() + options.networkTimeout);
    Descriptor socket;
    try {
        socket = connectTcp(address.host, address.port, waiter, connected, options.networkTimeout);
    } catch (const ConnectFailure& failure) {
        throw LdapFailure(failure.what());
    }
    LDAP* handle = nullptr;
    check(ldap_init_fd(socket.number(), LDAP_PROTO_TCP, address.url.c_str(), &handle), "no connection handle");
    m_handle.reset(handle);
    m_descriptor = socket.release();
    configure();
    if (address.tls) {
        shakeHands(until);
    } else if (options.startTls) {
        startTls(until);
    }
    if (!options.bindDn.empty()) {
        bind(until);
    }
}

void LdapConnection::configure() {
    const auto set = [this](int option, const void* value) {
        check(ldap_set_option(m_handle.get(), option, value), "connection option " + std::to_string(option));
    };
    const int version = LDAP_VERSION3;
    set(LDAP_OPT_PROTOCOL_VERSION, &version);
    // A referral would be followed with calls that block.
    set(LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    // No time limit of libldap's own, whatever its configuration file says: with one, it waits for the TLS handshake by
    // asking again and again.
    const timeval never{-1, 0};
    set(LDAP_OPT_NETWORK_TIMEOUT, &never);
    // What claims to be a longer message is no answer about a person, and would be given memory at once.
    Sockbuf* buffer = nullptr;
    ber_len_t longestMessage = m_options.limits.entryBytes;
    check(ldap_get_option(m_handle.get(), LDAP_OPT_SOCKBUF, &buffer), "connection buffer");
    ber_sockbuf_ctrl(buffer, LBER_SB_OPT_SET_MAX_INCOMING, &longestMessage);
}

void LdapConnection::startTls(TimePoint until) {
    int id = 0;
    if (ldap_start_tls(m_handle.get(), nullptr, nullptr, &id) != LDAP_SUCCESS) {
        throw lost();
    }
    const Result answer = await(id, "asking for TLS", until);
    if (answer.code != LDAP_SUCCESS) {
        throw LdapFailure("the server refused TLS (" + answer.text +
                          "); check its TLS settings, or use ldaps:// or [ldap] starttls");
    }
    shakeHands(until);
}

void LdapConnection::shakeHands(TimePoint until) {
    const int demand = m_options.verify ? LDAP_OPT_X_TLS_DEMAND : LDAP_OPT_X_TLS_NEVER;
    const int client = 0;
    LDAP* const handle = m_handle.get();
    if (ldap_set_option(handle, LDAP_OPT_X_TLS_REQUIRE_CERT, &demand) != LDAP_OPT_SUCCESS ||
        (!m_options.caFile.empty() &&
         ldap_set_option(handle, LDAP_OPT_X_TLS_CACERTFILE, m_options.caFile.c_str()) != LDAP_OPT_SUCCESS) ||
        ldap_set_option(handle, LDAP_OPT_X_TLS_NEWCTX, &client) != LDAP_OPT_SUCCESS) {
        throw LdapFailure("TLS cannot be set up; check that [ldap] ca_file (" + m_options.caFile +
                          ") is a readable file of certificates");
    }
    int code = LDAP_SUCCESS;
    {
        const SocketCutter cutter(m_waiter, m_descriptor, until);
        setBlocking(m_descriptor, true);
        code = ldap_install_tls(handle);
        setBlocking(m_descriptor, false);
    }
    if (code == LDAP_SUCCESS) {
        return;
    }
    m_waiter.throwIfStopped();
    if (std::chrono::steady_clock::now() >= until) {
        throw LdapFailure("no TLS handshake within the time limit" + std::string(timeIsUp));
    }
    char* text = nullptr;
    ldap_get_option(handle, LDAP_OPT_DIAGNOSTIC_MESSAGE, &text);
    const std::unique_ptr<char, void (*)(void*)> holder(text, ldap_memfree);
    const std::string words = text != nullptr ? text : ldap_err2string(code);
    if (m_options.verify && takesAnyCertificate(until)) {
        throw LdapFailure(mistrust());
    }
    throw LdapFailure("no TLS with the server (" + words +
                      "); check that it speaks TLS at this port, and its TLS settings");
}

// libldap does not say of a failed handshake whether the certificate is to blame. One more that takes any certificate
// does, and nothing but the handshake happens on it.
bool LdapConnection::takesAnyCertificate(TimePoint until) const {
    ServerLdapOptions trusting = m_options;
    trusting.verify = false;
    trusting.bindDn.clear();
    try {
        const LdapConnection connection(trusting, m_address, m_waiter, until);
        return true;
    } catch (const LdapFailure&) {
        return false;
    }
}

// Why a certificate is not taken, and what to do. libldap's words do not tell the reasons apart.
std::string LdapConnection::mistrust() const {
    const std::string authorities =
        m_options.caFile.empty() ? "that the system trusts" : "in [ldap] ca_file (" + m_options.caFile + ")";
    return "the server's certificate is not trusted: no authority " + authorities +
           " vouches for it, or it is for another host than " + m_address.host +
           ", or it is not valid at this time; put the certificate of the server's authority into [ldap] ca_file, "
           "and check the host in [ldap] url and the clock";
}

void LdapConnection::bind(TimePoint until) {
    berval password{m_options.password.size(), const_cast<char*>(m_options.password.data())};
    int id = 0;
    if (ldap_sasl_bind(m_handle.get(), m_options.bindDn.c_str(), LDAP_SASL_SIMPLE, &password, nullptr, nullptr, &id) !=
        LDAP_SUCCESS) {
        throw lost();
    }
    const Result answer = await(id, "signing in", until);
    if (answer.code != LDAP_SUCCESS) {
        throw LdapFailure("the server refused the sign-in as \"" + m_options.bindDn + "\" (" + answer.text +
                              "); check [ldap] bind_dn and password",
                          answer.code == LDAP_INVALID_CREDENTIALS ? LdapFailure::Kind::refused
                                                                  : LdapFailure::Kind::other);
    }
}

LdapConnection::Result LdapConnection::await(int id, std::string_view step, TimePoint until) {
    // The socket may stay ready for as long as the server sends something that is no answer.
    while (std::chrono::steady_clock::now() < until) {
        if (const Message message = receive(id)) {
            return result(*message);
        }
        m_waiter.waitReady(m_descriptor, POLLIN, until);
    }
    throw LdapFailure("no answer within the time limit while " + std::string(step) + std::string(timeIsUp));
}

LdapFailure LdapConnection::lost() {
    return LdapFailure("the server closed the connection before it had answered; check that the server runs and speaks "
                       "LDAP at this port (ldaps:// for TLS), and its log",
                       LdapFailure::Kind::lost);
}

bool LdapConnection::isAlive() {
    LDAPMessage* unasked = nullptr;
    timeval none{};
    const int type = ldap_result(m_handle.get(), LDAP_RES_ANY, LDAP_MSG_ONE, &none, &unasked);
    ldap_msgfree(unasked);
    return type == 0;
}

int LdapConnection::search(const std::string& filter, const std::vector<std::string>& attributes, int sizeLimit,
                           long seconds) {
    std::vector<char*> wanted; // libldap reads them only
    wanted.reserve(attributes.size() + 1);
    for (const std::string& attribute : attributes) {
        wanted.push_back(const_cast<char*>(attribute.c_str()));
    }
    wanted.push_back(nullptr);
    const int scope = m_options.scope == LdapScope::base  ? LDAP_SCOPE_BASE
                      : m_options.scope == LdapScope::one ? LDAP_SCOPE_ONELEVEL
                                                          : LDAP_SCOPE_SUBTREE;
    timeval limit{seconds, 0};
    int id = 0;
    const int code = ldap_search_ext(m_handle.get(), m_options.base.c_str(), scope, filter.c_str(), wanted.data(), 0,
                                     nullptr, nullptr, &limit, sizeLimit, &id);
    if (code == LDAP_SERVER_DOWN) {
        throw lost();
    }
    check(code, "the search cannot be sent; check [ldap] base, name_filter and number_filter");
    return id;
}

LdapConnection::Message LdapConnection::receive(int id) {
    LDAPMessage* message = nullptr;
    timeval none{};
    errno = 0;
    if (ldap_result(m_handle.get(), id, LDAP_MSG_ONE, &none, &message) < 0) {
        if (errno == ERANGE) { // what liblber says of a length; libldap says the same of it as of a closed connection
            throw LdapFailure("the server's answer holds an entry of more than " +
                              std::to_string(m_options.limits.entryBytes) +
                              " bytes, or a malformed one; raise [ldap] entry_limit_kb, or leave the entry out with "
                              "name_filter and number_filter");
        }
        throw lost();
    }
    return Message(message, ldap_msgfree);
}

void LdapConnection::abandon(int id) {
    ldap_abandon_ext(m_handle.get(), id, nullptr, nullptr);
}

LdapConnection::Values LdapConnection::values(LDAPMessage& entry, const std::string& attribute) const {
    return {ldap_get_values_len(m_handle.get(), &entry, attribute.c_str()), ldap_value_free_len};
}

LdapConnection::Result LdapConnection::result(LDAPMessage& last) const {
    int code = LDAP_OTHER;
    char* text = nullptr;
    const int parsed = ldap_parse_result(m_handle.get(), &last, &code, nullptr, &text, nullptr, nullptr, 0);
    const std::unique_ptr<char, void (*)(void*)> holder(text, ldap_memfree);
    if (parsed != LDAP_SUCCESS) {
        return {parsed, "its answer is malformed"};
    }
    std::string words = ldap_err2string(code);
    if (text != nullptr && *text != '\0') {
        words.append(": ").append(presentable(text));
    }
    return {code, words};
}

} // namespace host
