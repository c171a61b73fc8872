// Contacts that are searched (ContactIndex.h), and found again by a name and a number.
//
// A search offers at most three numbers with a contact. One that has more is offered as several, one behind the other,
// so that every number is found and dialled. What a search does not hand out (of which kind a number is, what else
// there is to know) is kept beside the index, and only of those contacts that have it.
//
//     table.add(contact);
//     table.index().appendMatches("5", hits);
//     const auto known = table.known(rows.front());
//
// Filled by one thread, then only read, by any number of threads at a time.
#pragma once

#include "host/contacts/ContactIndex.h"
#include "host/contacts/packed/ContactMarks.h"
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
    DirectorySearchData at(std::size_t position) const { return m_index.at(position); }
    KnownContact knownAt(std::size_t position) const;

private:
    void keepDetails(const Contact& contact, std::size_t first);
    KnownContact unpacked(std::size_t details) const;

    ContactIndex m_index;
    ContactMarks m_marks;
    PackedRecords m_details;           // of contacts of which more is known than what is offered
    Parted<std::uint32_t> m_detailsOf; // the first position at which each of these is offered
    std::string m_record;              // the one that is made
};

// The numbers of a contact that are not empty, and its extra.
KnownContact knownContactOf(const DirectorySearchData& contact);

} // namespace host
