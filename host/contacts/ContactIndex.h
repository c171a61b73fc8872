// Contacts in the form that is searched: made once, contact by contact, then only read, by any number of threads at a
// time.
//
// The forms of all contacts' names lie in one piece of memory, their forms of digits in another, and what is handed out
// in a third. A search walks through one of the first two and maps each hit to its contact with an index that only
// moves forward; behind a hit it goes on with the next contact.
//
//     ContactIndex::Search search(index, "5");
//     while (const auto contact = search.next()) {
//         index.append(*contact, hits);
//     }
#pragma once

#include "host/contacts/ContactMatch.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class ContactIndex {
    struct Forms;

public:
    ContactIndex() = default;

    explicit ContactIndex(std::span<const DirectorySearchData> contacts);

    // Makes room for contacts that take so many bytes of text, which saves moving them while the index grows.
    void reserve(std::size_t bytes);

    // Appends a contact: copies what it needs of it. Throws std::length_error when the forms of all take 4 GiB or more.
    // Before the index is shared between threads.
    void add(const DirectorySearchData& contact);

    std::size_t size() const { return m_contacts; }

    // Appends the contact at this position (less than size()) to hits.
    void append(std::size_t contact, OxList<DirectorySearchData>& hits) const;

    // Appends all contacts that match key (converted), in the order of Search.
    void appendMatches(std::string_view key, OxList<DirectorySearchData>& hits) const;

    // The contacts that match a converted key (ContactMatch.h), each once: first those in which every word of the key
    // begins a word of the name, or a key of digits a number, then the others; both in the order of the index, which
    // must outlive it.
    class Search {
    public:
        Search(const ContactIndex& index, std::string_view key);

        // The position of the next one; nothing at the end.
        std::optional<std::size_t> next();

    private:
        struct Hit {
            std::size_t contact;
            std::size_t place; // of the first word
        };

        std::optional<Hit> nextHit();
        bool isWordBegin(const Hit& hit) const;

        const ContactIndex& m_index;
        MatchKey m_key; // its longest word first
        const Forms& m_forms;
        std::size_t m_contact = 0;           // all before it have been decided
        std::vector<std::uint32_t> m_inside; // which come when all of them have been
        std::size_t m_given = 0;             // of these
    };

private:
    // The forms of all contacts one behind the other; ends[i] is where those of contact i end, with their last
    // separator.
    struct Forms {
        using Append = void (*)(std::string_view, std::string&);

        std::string bytes;
        std::vector<bool> wordBegins; // whether a word, or a number, begins at a byte; false behind its end
        std::vector<std::uint32_t> ends;

        void addNumber(std::string_view number);
        void addName(std::string_view name, Append append);
        void addForm(std::string_view name, Append append);
        void markWordBegin();
        void close();

        bool isWordBegin(std::size_t place) const { return place < wordBegins.size() && wordBegins[place]; }
        std::size_t find(std::string_view word, std::size_t contact, std::size_t from = 0) const;
        std::size_t begin(std::size_t contact) const { return contact == 0 ? 0 : ends[contact - 1]; }
        std::size_t contactAt(std::size_t place, std::size_t from) const;
    };

    static constexpr std::size_t fieldsPerContact = 5;

    std::size_t m_contacts = 0;
    Forms m_names;
    Forms m_digits;
    Forms m_fields; // name, numbers 1 to 3 and extra as they are, without separators; an end for each of them
};

} // namespace host
