// Contacts that are searched (ContactIndex.h), and found again by a name and a number.
//
// For each number of each contact there is a mark of 32 bits, made of the name and the number. What is looked for is
// marked the same way, and one walk through the marks finds the few contacts that are worth comparing: for a screen's
// rows among a hundred thousand contacts it takes about half a millisecond, and the marks take twelve bytes a
// contact.
//
//     table.add(contact);
//     table.index().appendMatches("5", hits);
//     const auto positions = table.find(rows);
//
// Filled by one thread, then only read, by any number of threads at a time.
#pragma once

#include "host/contacts/ContactIndex.h"
#include "host/sources/ContactLookup.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace host {

class ContactTable {
public:
    // Makes room for contacts that take so many bytes of text.
    void reserve(std::size_t bytes) { m_index.reserve(bytes); }

    // Throws what ContactIndex::add throws.
    void add(const DirectorySearchData& contact);

    const ContactIndex& index() const { return m_index; }

    // For each of rows the position of the first contact that has this name and, among its three numbers, this number,
    // both byte for byte.
    std::vector<std::optional<std::size_t>> find(std::span<const NameAndNumber> rows) const;

    // For each of rows whether there is one.
    std::vector<bool> holds(std::span<const NameAndNumber> rows) const;

    // The contact at this position (less than index().size()).
    DirectorySearchData at(std::size_t position) const;

private:
    ContactIndex m_index;
    std::vector<std::uint32_t> m_marks; // of the three numbers of each contact
};

// The numbers of a contact that are not empty, and its extra.
KnownContact knownContactOf(const DirectorySearchData& contact);

} // namespace host
