// Finds contacts again by a name and a number, among any number of them.
//
// For each number that is offered there is a mark of 16 bits, made of the name and the number. What is looked for is
// marked the same way, and one walk through the marks finds the few contacts that are worth comparing. The marks take
// six bytes a contact.
//
//     marks.add(name, {number1, number2, number3});
//     const auto positions = marks.find(rows, [&](std::size_t position) { return contactAt(position); });
//
// Filled by one thread, then only read, by any number of threads at a time.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/contacts/packed/Parted.h"
#include "host/sources/ContactLookup.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

class ContactMarks {
public:
    // Of the contact at the next position.
    void add(const DirectorySearchData& contact);

    // For each of rows the first position whose contact, which at gives, has this name and, among its three numbers,
    // this number, both byte for byte.
    std::vector<std::optional<std::size_t>> find(std::span<const NameAndNumber> rows,
                                                 const std::function<DirectorySearchData(std::size_t)>& at) const;

private:
    static constexpr std::size_t numbersPerContact = 3;
    using Marks = std::array<std::uint16_t, numbersPerContact>;

    Parted<Marks> m_marks; // at each position
};

// For each whether there is one.
std::vector<bool> isFound(const std::vector<std::optional<std::size_t>>& positions);

// The numbers that are offered with a contact.
std::array<const std::string*, 3> numbersOf(const DirectorySearchData& contact);

} // namespace host
