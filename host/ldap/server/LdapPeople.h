// The rows of one LDAP answer, collected from the people that the directory sends.
//
// Every number of a person gives a row; people whom the key matches better come first. A number filter finds more than
// the key, since anything may stand between the digits; what does not hold the key once the number is in dialable form
// is dropped here. What a person or the answer has beyond the limits is left out and counted, so that no server decides
// how much memory an answer takes. The work grows with the bytes that are received and with nothing else. Used by one
// thread.
//
// Rows have a name and a number. What else the directory tells is kept person by person, for whoever looks a row up.
#pragma once

#include "host/ldap/server/ServerLdap.h"
#include "host/sources/Contact.h"
#include "host/sources/ContactLookup.h"

#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host {

// A person who has rows in an answer.
struct LdapPerson {
    std::string name;
    std::vector<ContactNumber> numbers;
    std::vector<KnownContact::Fact> facts;
};

class LdapPeople {
public:
    // A person as received: the values of the name attributes and of the number attributes, both in the order in which
    // the attributes are preferred, and those of the attributes with details.
    struct Person {
        struct Number {
            std::string_view text;
            NumberKind kind = NumberKind::unknown;
        };
        struct Detail {
            std::string label;
            std::string_view text;
        };

        std::vector<std::string_view> names;
        std::vector<Number> numbers;
        std::vector<Detail> details{};
    };

    // key: converted; of digits, one of a person's numbers must match it, otherwise every person counts. limit: how
    // many people are taken; 0: as many as the other limits allow. goOn is called again and again while a person is
    // taken, and may throw to end that.
    LdapPeople(std::string key, std::size_t limit, const LdapLimits& limits, std::function<void()> goOn);

    // Takes a person. False: a limit of the answer is reached, so nobody further can be taken.
    bool add(const Person& person);

    std::list<NS_TA::LdapResultItem> takeRows();
    std::vector<LdapPerson> takePeople() { return std::move(m_people); }

    // What is missing in the rows and the setting that decides about it, one text each, for people. serverCut: the
    // server has more people than it sent.
    std::vector<std::string> leftOut(bool serverCut) const;

private:
    struct Dialable {
        const std::string* number;
        NumberKind kind;
    };
    using Numbers = std::vector<Dialable>;

    Numbers dialableNumbers(const std::vector<Person::Number>& written, std::unordered_set<std::string>& memory);
    std::vector<KnownContact::Fact> usableFacts(const std::vector<Person::Detail>& details);
    std::string_view usableName(const std::vector<std::string_view>& names);
    bool addRow(std::list<NS_TA::LdapResultItem>& rows, std::string_view name, const std::string& number);

    const std::string m_key;
    const bool m_digits;
    const std::size_t m_limit;
    const LdapLimits m_limits;
    const std::function<void()> m_goOn;
    std::list<NS_TA::LdapResultItem> m_better; // rows of those whom the key matches better
    std::list<NS_TA::LdapResultItem> m_others;
    std::vector<LdapPerson> m_people;
    std::size_t m_taken = 0;
    std::size_t m_bytes = 0;       // of names and numbers in the rows
    std::size_t m_detailBytes = 0; // of the details, which have as much again

    bool m_peopleCut = false;
    bool m_rowsCut = false;
    bool m_bytesCut = false;
    std::size_t m_nameless = 0;
    std::size_t m_longNamed = 0;
    std::size_t m_numberless = 0;
    std::size_t m_longNumbers = 0;
    std::size_t m_crowded = 0;     // people with more numbers than are taken
    std::size_t m_leftDetails = 0; // beyond a limit
};

} // namespace host
