// Contacts that are searched (ContactIndex.h), and found again by a name and a number.
//
// A search offers at most three numbers with a contact. One that has more is offered as several, one behind the other,
// so that every number is found and dialled. What a search does not hand out (of which kind a number is, what else
// there is to know) is kept beside the index, and only of those contacts that have it.
//
// For each number that is offered there is a mark of 32 bits, made of the name and the number. What is looked for is
// marked the same way, and one walk through the marks finds the few contacts that are worth comparing: for a screen's
// rows among a hundred thousand contacts it takes about half a millisecond, and the marks take twelve bytes a
// contact.
//
//     table.add(contact);
//     table.index().appendMatches("5", hits);
//     const auto known = table.known(rows.front());
//
// Filled by one thread, then only read, by any number of threads at a time.
#pragma once

#include "host/contacts/ContactIndex.h"
#include "host/sources/ContactLookup.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

class ContactTable {
public:
    // Both throw what ContactIndex::add throws. The second adds exactly one position.
    void add(const Contact& contact);
    void add(const DirectorySearchData& contact);

    const ContactIndex& index() const { return m_index; }

    // For each of rows the first position whose contact has this name and, among the three numbers there, this number,
    // both byte for byte.
    std::vector<std::optional<std::size_t>> find(std::span<const NameAndNumber> rows) const;

    // For each of rows whether there is one.
    std::vector<bool> holds(std::span<const NameAndNumber> rows) const;

    // All that is known of the first contact of that name with that number.
    std::optional<KnownContact> known(const NameAndNumber& row) const;

    // What is offered at this position (less than index().size()), and all that is known of its contact.
    DirectorySearchData at(std::size_t position) const;
    KnownContact knownAt(std::size_t position) const;

private:
    // Of a contact of which more is known than what is offered.
    struct Details {
        std::size_t first = 0; // the positions at which it is offered: from this one
        std::size_t end = 0;   // to before this one
        std::size_t begin = 0; // in m_detailBytes
    };

    void keepDetails(const Contact& contact, std::size_t first);
    KnownContact unpacked(const Details& details) const;

    ContactIndex m_index;
    std::vector<std::uint32_t> m_marks; // of the three numbers at each position
    std::vector<Details> m_details;     // in the order of the positions
    std::string m_detailBytes;
};

// The numbers of a contact that are not empty, and its extra.
KnownContact knownContactOf(const DirectorySearchData& contact);

} // namespace host
