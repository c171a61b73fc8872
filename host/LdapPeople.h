// The rows of one LDAP answer, collected from the people that the directory sends.
//
// Every number of a person gives a row. A number filter finds more than the key, since anything may stand between the
// digits; what does not hold the key once the number is in dialable form is dropped here. Used by one thread.
#pragma once

#include "host/LdapDirectory.h"

#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace host {

class LdapPeople {
public:
    // A person as received: the values of the name attributes and of the number attributes, both in the order in which
    // the attributes are preferred.
    struct Person {
        std::vector<std::string> names;
        std::vector<std::string> numbers;
    };

    // numberKey: the digits that one of a person's numbers must hold; empty: every person counts. limit: how many
    // people are taken; 0: all.
    LdapPeople(std::string numberKey, std::size_t limit);

    // Takes a person. False: it would have been one more than the limit.
    bool add(const Person& person);

    std::list<NS_TA::LdapResultItem> takeRows();

    // People that had to be left out because no name, or none of their numbers, was usable.
    std::size_t nameless() const { return m_nameless; }
    std::size_t numberless() const { return m_numberless; }

private:
    std::string m_numberKey;
    std::size_t m_limit;
    std::size_t m_taken = 0;
    std::size_t m_nameless = 0;
    std::size_t m_numberless = 0;
    std::list<NS_TA::LdapResultItem> m_rows;
};

} // namespace host
