// Who is the same person when contacts are brought together: one of the same name, in whatever order and letter case,
// who has a number or an e-mail address in common, or of whom one side knows neither.
//
//     PersonIndex people;
//     if (const auto known = people.find(contact)) { ... } else { people.add(contact, position); }
#pragma once

#include "host/sources/Contact.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace wideseek {

// Whether both are dialled alike, as far as that can be told without knowing the country: "+44 20 7946 0070" is
// "020 7946 0070".
bool isSameNumber(std::string_view a, std::string_view b);

// What contact knows and known does not, to be added to it: numbers, addresses and the like, and an organisation, a
// title, a birthday or a city where known has none. Its name is empty.
host::Contact newIn(const host::Contact& contact, const host::Contact& known);

// Whether a contact has anything but a name.
bool hasAnything(const host::Contact& contact);

class PersonIndex {
public:
    // A position that was added for the same person; the first one of several.
    std::optional<std::size_t> find(const host::Contact& contact) const;

    void add(const host::Contact& contact, std::size_t position);

private:
    std::unordered_map<std::string, std::size_t> m_positions; // by name, and by one thing that is known of the person
};

} // namespace wideseek
