// Which part of a name or number a key has found, for a screen that shows why a row is there. Pure; any thread.
//
//     if (const auto part = matchedInName("Jed Marlowe", "5336")) {
//         show(name.substr(part->begin, part->size));    // "Jed M"
//     }
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace host::text {

// In bytes; whole characters, with the marks behind the last one.
struct Part {
    std::size_t begin = 0;
    std::size_t size = 0;

    friend bool operator==(const Part&, const Part&) = default;
};

// The first place where a converted key stands in a name: the letters that its digits stand for, or the text itself.
// Nothing when the name does not match, or the key is empty.
std::optional<Part> matchedInName(std::string_view name, std::string_view key);

// The same in a number, in which digits are found and nothing else is looked for.
std::optional<Part> matchedInNumber(std::string_view number, std::string_view key);

} // namespace host::text
