// The forms of names and numbers in which contacts are searched (ContactMatch.h): made once, contact by contact, then
// only read, by any number of threads at a time.
//
// The contacts stand in parts of a set number. Within one the forms of all names lie in one piece of memory, and their
// forms of digits in another. A search walks through one of the two and maps each hit to its contact with an index that
// only moves forward; behind a hit it goes on with the next contact.
//
//     forms.add("Ann", {"5311"});
//     SearchForms::Search search(forms, "5");
//     while (const auto contact = search.next()) { use(*contact); }
#pragma once

#include "host/contacts/ContactMatch.h"
#include "host/contacts/packed/Offsets.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class SearchForms {
    struct Forms;

public:
    // Appends a contact, of which its name and numbers count. Throws std::length_error from 2^32 contacts on.
    void add(const DirectorySearchData& contact);

    std::size_t size() const { return m_contacts; }

    // The forms of digits from those of the contact at this position (less than size()) on: first those of its numbers,
    // in their order, of which an empty one has none. Valid until the next add().
    std::string_view digitsFrom(std::size_t contact) const {
        const Forms& digits = m_parts[contact / perPart].digits;
        const std::size_t begin = digits.begins[contact % perPart];
        return {digits.bytes.data() + begin, digits.bytes.size() - begin};
    }

    // The contacts that match a converted key (ContactMatch.h), each once: first those in which every word of the key
    // begins a word of the name, or a key of digits a number, then the others; both in the order of the contacts. The
    // forms must outlive it.
    class Search {
    public:
        Search(const SearchForms& forms, std::string_view key);

        // The position of the next one; nothing at the end.
        std::optional<std::size_t> next();

    private:
        struct Hit {
            std::size_t contact; // in the part
            std::size_t place;   // of the first word
        };

        const Forms& forms() const { return m_key.digits ? m_all.m_parts[m_part].digits : m_all.m_parts[m_part].names; }
        std::optional<Hit> nextHit();
        bool isWordBegin(const Hit& hit) const;

        const SearchForms& m_all;
        MatchKey m_key;                      // its longest word first
        std::size_t m_part = 0;              // all before it have been decided
        std::size_t m_next = 0;              // as have the contacts before this one in the part
        std::vector<std::uint32_t> m_inside; // which come when all of them have been
        std::size_t m_given = 0;             // of these
    };

private:
    // The forms of contacts one behind the other.
    struct Forms {
        using Append = void (*)(std::string_view, std::string&);

        std::string bytes;
        std::vector<bool> wordBegins; // whether a word, or a number, begins at a byte; false behind its end
        Offsets begins;               // of each contact, in bytes

        void addNumber(std::string_view number);
        void addName(std::string_view name, Append append);
        void addForm(std::string_view name, Append append);
        void markWordBegin();
        void shrink();

        bool isWordBegin(std::size_t place) const { return place < wordBegins.size() && wordBegins[place]; }
        std::string_view upToEndOf(std::size_t contact) const {
            return {bytes.data(), contact + 1 < begins.size() ? begins[contact + 1] : bytes.size()};
        }
        std::size_t find(std::string_view word, std::size_t contact) const;
        std::size_t contactAt(std::size_t place, std::size_t from) const;
    };

    struct Part {
        Forms names;
        Forms digits;
    };

    static constexpr std::size_t perPart = 1024;
    static_assert(perPart <= Offsets::most);

    Part& partForNext();

    std::vector<Part> m_parts; // full but for the last one
    std::size_t m_contacts = 0;
};

} // namespace host
