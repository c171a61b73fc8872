// What stands behind the phone's LDAP module: a directory that answers later.
//
// There are three: a directory file with a set delay (EmbeddedLdap.h), a real server (ServerLdap.h), and the scripted
// one of the tests. The LDAP module (Ldap.cpp) sees to it that at most one query runs: it abandons the older one first.
#pragma once

#include "platform/Ldap.h"

#include <functional>
#include <list>
#include <string>

namespace host {

struct LdapQuery {
    std::string key; // converted; digits are looked for in numbers, anything else in names
    int maxCount = 0;
};

struct LdapAnswer {
    bool succeeded = false;
    std::list<NS_TA::LdapResultItem> rows; // in the directory's order
    std::string problem; // for people: what went wrong or is incomplete, and what to check; else empty
};

class LdapDirectory {
public:
    using Done = std::function<void(LdapAnswer)>;

    virtual ~LdapDirectory() = default;

    // Starts query and returns at once. done is called exactly once, never from within start, on any thread, with no
    // lock of the directory held; after abandon or the destructor has returned it is not called any more.
    virtual void start(LdapQuery query, Done done) = 0;

    // Gives up the running query, if there is one. Does not wait for the network. Any thread.
    virtual void abandon() = 0;
};

} // namespace host
