// Which parts of a name or number a key has found, for a screen that shows why a row is there, and whether it is a
// better match. Any thread.
//
//     for (const auto& part : matchedInName("Jed Marlowe", "marl j")) {
//         show(name.substr(part.begin, part.size));    // "J", then "Marl"
//     }
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace host::text {

// In bytes; whole characters, with the marks behind the last one.
struct Part {
    std::size_t begin = 0;
    std::size_t size = 0;

    friend bool operator==(const Part&, const Part&) = default;
};

// Where a converted key stands in a name: the letters that its digits stand for, or each of its words. Where a word
// stands at several places, the first one at which a word of the name begins, or else the first one. In order, and
// apart from each other. Nothing when the name does not match, or the key is empty.
std::vector<Part> matchedInName(std::string_view name, std::string_view key);

// The same in a number, in which digits are found and nothing else is looked for.
std::vector<Part> matchedInNumber(std::string_view number, std::string_view key);

// Whether a converted key matches, and each of its words begins a word of the name.
bool beginsWordsOf(std::string_view name, std::string_view key);

// Whether a key of digits begins the number, in one of its forms.
bool beginsNumber(std::string_view number, std::string_view key);

} // namespace host::text
