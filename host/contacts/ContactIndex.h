// Contacts in the form that is searched, with what is handed out of them: made once, contact by contact, then only
// read, by any number of threads at a time.
//
//     ContactIndex index;
//     index.add({"Ann", "5311"});
//     index.appendMatches("5", hits);
//
// All of it stands in parts of bounded size (SearchForms.h, PackedRecords.h), so that it never takes much more memory
// than what is in it. A number that is the same as one of its forms of digits is kept there alone.
#pragma once

#include "host/contacts/SearchForms.h"
#include "host/contacts/packed/PackedRecords.h"
#include "host/contacts/packed/SharedTexts.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace host {

class ContactIndex {
public:
    ContactIndex() = default;

    explicit ContactIndex(std::span<const DirectorySearchData> contacts);

    // Appends a contact: copies what it needs of it. Throws what SearchForms::add throws. Before the index is shared
    // between threads.
    void add(const DirectorySearchData& contact);

    std::size_t size() const { return m_forms.size(); }

    // Appends the contact at this position (less than size()) to hits.
    void append(std::size_t contact, OxList<DirectorySearchData>& hits) const { unpack(contact, hits.EmplaceBack()); }
    DirectorySearchData at(std::size_t contact) const;

    // Appends all contacts that match key (converted), in the order of SearchForms::Search.
    void appendMatches(std::string_view key, OxList<DirectorySearchData>& hits) const;

private:
    void packNumber(const std::string& number, std::string_view& forms);
    void unpack(std::size_t contact, DirectorySearchData& into) const;

    SearchForms m_forms;
    PackedRecords m_fields; // name, numbers 1 to 3 and extra
    SharedTexts m_extras;
    std::string m_record; // the one that is made
};

} // namespace host
