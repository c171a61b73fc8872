// The people of a server's latest answers, to be found again by name and number: of the rows on a screen, whatever else
// the server told. Any thread.
#pragma once

#include "host/ldap/server/LdapPeople.h"
#include "host/sources/ContactLookup.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <vector>

namespace host {

class LdapAnswers {
public:
    // An answer may be replaced by the next one before its rows are off the screen.
    static constexpr std::size_t kept = 4;

    void add(std::vector<LdapPerson> people);

    // As ContactLookup.h says.
    std::vector<bool> holds(std::span<const NameAndNumber> rows) const;
    std::optional<KnownContact> find(const NameAndNumber& row) const;
    std::size_t size() const;

private:
    const LdapPerson* personOf(const NameAndNumber& row) const;

    mutable std::mutex m_mutex;                    // a leaf, held for a walk through the people
    std::deque<std::vector<LdapPerson>> m_answers; // guarded by m_mutex; the latest first
};

} // namespace host
