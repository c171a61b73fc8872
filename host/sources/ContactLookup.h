// Finds the contact of a row again: whether a source holds it, and all that the source knows of it.
//
// A row of a search tells neither which source it is from nor what else that source knows. A source that keeps its
// contacts answers both from what it read last, as that is what the row was made of; it reads no file for it. A row
// whose contact has gone since is held by nobody.
//
//     const std::array rows = {host::NameAndNumber{"Jed Marlowe", "2023"}};
//     if (lookup.holds(rows).front()) {
//         const auto contact = lookup.find(rows.front());
//     }
#pragma once

#include "host/sources/Contact.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What a row shows of its contact, byte for byte.
struct NameAndNumber {
    std::string_view name;
    std::string_view number;
};

struct KnownContact {
    struct Fact {
        std::string label; // for people
        std::string value; // not empty
    };

    std::vector<ContactNumber> numbers; // those that the search offers, in the source's order
    std::vector<Fact> facts;            // everything else
};

class ContactLookup {
public:
    virtual ~ContactLookup() = default;

    // For each of rows whether a contact of that name with that number is held; all in one walk through the contacts.
    // Any thread.
    virtual std::vector<bool> holds(std::span<const NameAndNumber> rows) const = 0;

    // The first contact of that name with that number. Any thread.
    virtual std::optional<KnownContact> find(const NameAndNumber& row) const = 0;
};

} // namespace host
