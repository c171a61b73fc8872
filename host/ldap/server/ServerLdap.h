// An LDAP directory behind the phone's LDAP module: a real server, asked over the network (RFC 4511).
//
//     std::vector<std::string> problems;
//     if (auto options = host::readServerLdapOptions(file, problems))
//         phone.setLdap(host::makeServerLdap(*options, log));
//
// One worker thread does everything that touches the network: it connects, binds, searches, and calls done. start and
// abandon only leave a note for it and wake it. The connection is kept between queries; when a kept one turns out to be
// dead, the query is asked once more on a fresh one. A newer query abandons the older one on the server, so at most one
// runs there. After a failure the connection is closed and the next query begins anew. After a refused password there
// is a pause first (SignInPause.h). A directory that is made anew, with other settings, does not pause. An exception of
// any kind, the want of memory too, fails the answer that it stands in the way of, and the worker goes on. One that
// comes out of done is logged.
//
// A key of digits ("*" and "#" included) is looked for in the number attributes, any other key in the name attributes.
// Every number of a person that is found gives a row, in dialable form. An answer that fails, or is incomplete because
// a limit was reached, says in `problem` what happened and what to check; it is not logged here as well.
//
// abandon and the destructor wait for a done that is running, and for nothing else: they must not be called with a lock
// held that done takes. abandon may be called from within done, the destructor must not.
#pragma once

#include "host/sources/ContactLookup.h"
#include "host/sources/LdapDirectory.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class LdapScope { base, one, subtree };

// How much is taken from a server, whatever it sends; what is beyond is left out, and the answer's problem says so.
struct LdapLimits {
    std::size_t nameBytes = 512;       // name_limit: a longer name does not count
    std::size_t numberBytes = 64;      // number_limit: nor does a number that is written longer
    std::size_t numbers = 20;          // numbers_limit: numbers of a person
    std::size_t rows = 2000;           // row_limit: rows in an answer
    std::size_t answerBytes = 1 << 20; // answer_limit_kb: names and numbers of all rows in an answer
    std::size_t entryBytes = 1 << 20;  // entry_limit_kb: an entry as it is sent; a larger one fails the answer
};

// Each with its key in the section [ldap] of the phone's configuration file.
struct ServerLdapOptions {
    std::string url;                                  // url: ldap://host[:port] or ldaps://host[:port]
    bool startTls = false;                            // starttls: on or off; not with ldaps
    std::string caFile;                               // ca_file: trusted certificates (PEM); empty: the system's
    bool verify = true;                               // verify: on, or off to take any certificate
    std::string base;                                 // base: the entry to search below
    LdapScope scope = LdapScope::subtree;             // scope: base, one or sub
    std::string bindDn;                               // bind_dn: empty: anonymous
    std::string password;                             // password: never logged
    std::vector<std::string> nameAttributes = {"cn"}; // name_attributes: the first with a value counts
    std::vector<std::string> numberAttributes = {"telephoneNumber", "mobile"}; // number_attributes: all count
    std::vector<std::string> detailAttributes{}; // detail_attributes: shown beside a person
    std::string nameFilter;   // name_filter: %k is the key; empty: from the attributes (LdapFilter.h)
    std::string numberFilter; // number_filter: %k is the key's digits with "*" between; empty: likewise
    int sizeLimit = 200;      // size_limit: people in an answer; 0: no limit but the query's own
    LdapLimits limits;
    std::chrono::milliseconds timeLimit{5000};      // time_limit_ms: from start to the answer, whatever happens
    std::chrono::milliseconds networkTimeout{3000}; // network_timeout_ms: for the TCP connection to be made
};

// A server as a directory, and the people of its latest answers, each with kinds of numbers and details.
class ServerLdapDirectory : public LdapDirectory, public ContactLookup {};

// The directory. Throws std::invalid_argument with a text for people when a URL, attribute or filter template cannot be
// used. log takes what is worth knowing but no answer's problem, such as a connection that had to be made again; it is
// called on the worker thread (and on the caller's within makeServerLdap) with no lock held. Any thread.
std::shared_ptr<ServerLdapDirectory> makeServerLdap(ServerLdapOptions options, std::function<void(std::string)> log);

// The keys of the section [ldap] that readServerLdapOptions looks at.
inline constexpr const char* serverLdapKeys[] = {"url",
                                                 "starttls",
                                                 "ca_file",
                                                 "verify",
                                                 "base",
                                                 "scope",
                                                 "bind_dn",
                                                 "password",
                                                 "schema",
                                                 "name_attributes",
                                                 "number_attributes",
                                                 "detail_attributes",
                                                 "name_filter",
                                                 "number_filter",
                                                 "size_limit",
                                                 "name_limit",
                                                 "number_limit",
                                                 "numbers_limit",
                                                 "row_limit",
                                                 "answer_limit_kb",
                                                 "entry_limit_kb",
                                                 "time_limit_ms",
                                                 "network_timeout_ms"};

// Reads the section [ldap] of a configuration file (ConfigFile.h). Nothing when there are mistakes, each of which is
// appended to problems as "file:line: [ldap] key: value; what is allowed": no server is asked with half of its
// settings, as a misread one may send a password unprotected. A line that cannot be read counts as well: it may have
// been one of them. Any thread.
std::optional<ServerLdapOptions> readServerLdapOptions(const std::filesystem::path& file,
                                                       std::vector<std::string>& problems);

} // namespace host
