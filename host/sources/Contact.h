// A contact as a source knows it: with any number of numbers, each of a kind, and whatever else there is to show of it.
//
//     Contact contact{.name = "Zoë Fairweather"};
//     contact.numbers.push_back({"+442079460070", NumberKind::work});
//     contact.facts.push_back({FactKind::organisation, "Example Ltd"});
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class NumberKind { unknown, work, mobile, home, fax, other };

inline constexpr NumberKind knownNumberKinds[] = {NumberKind::work, NumberKind::mobile, NumberKind::home,
                                                  NumberKind::fax, NumberKind::other};

struct ContactNumber {
    std::string number; // as dialled
    NumberKind kind = NumberKind::unknown;

    bool operator==(const ContactNumber&) const = default;
};

enum class FactKind {
    organisation,
    department,
    title, // what the person is there
    nickname,
    email,
    address,
    city,
    web,
    chat,
    birthday,
    group,
    note,
};

inline constexpr FactKind factKinds[] = {FactKind::organisation, FactKind::department, FactKind::title,
                                         FactKind::nickname,     FactKind::email,      FactKind::address,
                                         FactKind::city,         FactKind::web,        FactKind::chat,
                                         FactKind::birthday,     FactKind::group,      FactKind::note};

struct Contact {
    struct Fact {
        FactKind kind{};
        std::string value; // not empty

        bool operator==(const Fact&) const = default;
    };

    std::string name;
    std::vector<ContactNumber> numbers;
    std::string extra; // beside the contact in a row; empty: what extraOf makes of the facts
    std::vector<Fact> facts;

    bool operator==(const Contact&) const = default;
};

// "work" and "organisation", as columns of a contact file are called; empty for NumberKind::unknown.
std::string_view nameOf(NumberKind kind);
std::string_view nameOf(FactKind kind);

// The same as people read it on a screen: "Organisation".
std::string labelOf(FactKind kind);

// What a row shows beside the contact: its extra, else organisation and department, else title, city or group; empty
// when there is none.
std::string extraOf(const Contact& contact);

} // namespace host
