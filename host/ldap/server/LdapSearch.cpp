#include "host/ldap/server/LdapSearch.h"

#include "host/ldap/server/LdapAttributes.h"
#include "host/ldap/server/LdapFilter.h"
#include "host/sources/DirectoryAttributes.h"
#include "platform/CommonAPI.h"

#include <poll.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace host {

namespace {

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string sentence(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all.append(all.empty() ? "" : "; ").append(text);
    }
    return all;
}

} // namespace

// A search that runs on the server; abandoned there unless it has ended.
class LdapSearch::Running {
public:
    Running(LdapConnection& connection, int id) : m_connection(connection), m_id(id) {}
    ~Running() {
        if (!m_ended) {
            m_connection.abandon(m_id);
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    LdapConnection::Message receive() {
        LdapConnection::Message message = m_connection.receive(m_id);
        m_ended = message && ldap_msgtype(message.get()) == LDAP_RES_SEARCH_RESULT;
        return message;
    }

private:
    LdapConnection& m_connection;
    int m_id;
    bool m_ended = false;
};

LdapSearch::LdapSearch(const ServerLdapOptions& options, LdapConnection& connection, const Waiter& waiter,
                       TimePoint deadline, std::function<void()> wanted)
    : m_options(options), m_connection(connection), m_waiter(waiter), m_deadline(deadline),
      m_wanted(std::move(wanted)) {
}

LdapSearch::Answer LdapSearch::answer(const LdapQuery& query) {
    const bool digits = CommonAPI_IsSearchByT9(query.key);
    const int asked = query.maxCount > 0 ? query.maxCount : m_options.sizeLimit;
    const int limit = m_options.sizeLimit > 0 ? std::min(asked, m_options.sizeLimit) : asked;
    const auto left = std::chrono::ceil<std::chrono::seconds>(m_deadline - std::chrono::steady_clock::now());
    const std::string filter =
        digits ? numberFilter(m_options.numberFilter, query.key) : nameFilter(m_options.nameFilter, query.key);

    LdapPeople people(query.key, static_cast<std::size_t>(limit), m_options.limits, [this] { goOn(); });
    // Of the people that a number filter finds only some hold the key, so the server cannot count them.
    Running running(m_connection,
                    m_connection.search(filter,
                                        joined(joined(m_options.nameAttributes, m_options.numberAttributes),
                                               m_options.detailAttributes),
                                        digits ? 0 : limit, static_cast<long>(std::max<long long>(left.count(), 1))));
    for (;;) {
        const LdapConnection::Message message = nextMessage(running);
        const int type = ldap_msgtype(message.get());
        const bool ended = type == LDAP_RES_SEARCH_RESULT;
        const bool cut = ended && isCut(*message);
        if (ended || (type == LDAP_RES_SEARCH_ENTRY && !add(*message, people))) {
            LdapAnswer rows{true, people.takeRows(), sentence(people.leftOut(cut))};
            return {std::move(rows), people.takePeople()};
        }
    }
}

void LdapSearch::goOn() const {
    m_waiter.throwIfStopped();
    m_wanted();
    if (std::chrono::steady_clock::now() >= m_deadline) {
        throw LdapFailure("no complete answer within the time limit of " + std::to_string(m_options.timeLimit.count()) +
                          " ms; check the server and the network, or raise [ldap] time_limit_ms");
    }
}

LdapConnection::Message LdapSearch::nextMessage(Running& running) const {
    for (;;) {
        goOn();
        if (LdapConnection::Message message = running.receive()) {
            return message;
        }
        m_waiter.wait(m_connection.descriptor(), POLLIN, m_deadline);
    }
}

// False: nobody further can be taken.
bool LdapSearch::add(LDAPMessage& entry, LdapPeople& people) const {
    std::vector<LdapConnection::Values> memory; // what the person's values lie in
    LdapPeople::Person person;
    const auto read = [&](const std::vector<std::string>& attributes, const auto& take) {
        for (const std::string& attribute : attributes) {
            const auto& values = memory.emplace_back(m_connection.values(entry, attribute));
            for (berval** value = values.get(); value != nullptr && *value != nullptr; ++value) {
                take(attribute, std::string_view((*value)->bv_val, (*value)->bv_len));
            }
        }
    };
    read(m_options.nameAttributes, [&](const auto&, std::string_view text) { person.names.push_back(text); });
    read(m_options.numberAttributes, [&](const std::string& attribute, std::string_view text) {
        person.numbers.push_back({text, kindOfAttribute(attribute)});
    });
    read(m_options.detailAttributes, [&](const std::string& attribute, std::string_view text) {
        person.details.push_back({labelOfAttribute(attribute), text});
    });
    return people.add(person);
}

// True when the server has more than it sent. Throws LdapFailure when it refused the search.
bool LdapSearch::isCut(LDAPMessage& last) const {
    const LdapConnection::Result result = m_connection.result(last);
    const bool cut = result.code == LDAP_SIZELIMIT_EXCEEDED || result.code == LDAP_ADMINLIMIT_EXCEEDED;
    if (!cut && result.code != LDAP_SUCCESS) {
        throw LdapFailure("the server refused the search (" + result.text +
                          "); check [ldap] base, scope, name_filter and number_filter, and what bind_dn may read");
    }
    return cut;
}

} // namespace host
