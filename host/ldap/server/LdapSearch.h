// One search on a connection: a query goes to the server, the people that it sends become the rows of the answer.
//
// It ends in time however much the server sends: whether to go on is asked between messages and within each of them.
// Used by the worker thread.
#pragma once

#include "host/ldap/server/LdapConnection.h"
#include "host/ldap/server/LdapPeople.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/ldap/server/Waiter.h"

#include <functional>

namespace host {

class LdapSearch {
public:
    // wanted throws when nobody waits for the answer any more, and the waiter is woken then. All but that function
    // outlive the search.
    LdapSearch(const ServerLdapOptions& options, LdapConnection& connection, const Waiter& waiter, TimePoint deadline,
               std::function<void()> wanted);

    // The answer to query; its problem says what is missing in them. Throws LdapFailure, Stopped through the waiter,
    // and what wanted throws. Whatever ends it, the server is told to stop searching.
    struct Answer {
        LdapAnswer rows;
        std::vector<LdapPerson> people; // of the rows
    };
    Answer answer(const LdapQuery& query);

private:
    class Running;

    void goOn() const;
    LdapConnection::Message nextMessage(Running& running) const;
    bool add(LDAPMessage& entry, LdapPeople& people) const;
    bool isCut(LDAPMessage& last) const;

    const ServerLdapOptions& m_options;
    LdapConnection& m_connection;
    const Waiter& m_waiter;
    const TimePoint m_deadline;
    const std::function<void()> m_wanted;
};

} // namespace host
