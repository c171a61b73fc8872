// What the readers of contacts share: where a contact stands, what becomes of bad input, and how much is taken of a
// single contact, wherever it comes from.
#pragma once

#include "host/files/Problems.h"
#include "host/sources/Contact.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Of one contact no more is taken; what is longer is shortened or left out, and reported.
inline constexpr std::size_t longestName = 512;  // bytes
inline constexpr std::size_t longestNumber = 64; // bytes, as it is written
inline constexpr std::size_t mostNumbers = 100;
inline constexpr std::size_t longestFact = 4096; // bytes
inline constexpr std::size_t mostFacts = 100;

// What has been read of a file, besides its contacts.
struct ReadContacts {
    std::vector<std::string> problems; // "file:line: reason", of what was skipped or is doubtful
    std::string error;                 // why there are no contacts at all; else empty
};

// Takes the contacts one by one, in the file's order.
using TakeContact = std::function<void(const Contact& contact)>;

// Makes a contact of what a file says, within the limits above; what is wrong is a problem of the line that it is given
// with.
class ContactBuilder {
public:
    // problems must outlive the builder.
    explicit ContactBuilder(Problems& problems) : m_problems(problems) {}

    // Forgets the contact.
    void clear() { m_contact = {}; }

    // Each leaves out what is empty. Blanks at the ends are dropped, line breaks become blanks. A number is brought
    // into the form that is dialled; one that cannot be is kept as it is, and reported; one that is there already only
    // gives its kind to a number without one.
    void setName(std::string_view name, std::size_t line);
    void addNumber(std::string_view number, NumberKind kind, std::size_t line);
    void addFact(FactKind kind, std::string_view value, std::size_t line);
    void setExtra(std::string_view extra) { m_contact.extra = oneLine(extra); }

    // Ends it: a contact without a name is called by its organisation, nickname or e-mail address. The builder's until
    // clear().
    Contact& finish();
    const Contact& contact() const { return m_contact; }

    // text without blanks at its ends, each run of control characters in it a blank.
    static std::string oneLine(std::string_view text);

private:
    Problems& m_problems;
    Contact m_contact;
};

// text, or as much of it as has at most so many bytes; never part of a character.
std::string_view cutAt(std::string_view text, std::size_t bytes);

} // namespace host
