// The sources that the phone's source list enables, in their order, with the names that people and the phone's reports
// call them by.
//
//     for (const EnabledSource& source : enabledSources()) { ... }
//
// The library has been started (Library.h). Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

struct EnabledSource {
    std::string label;     // the display name, or the id where there is none
    std::string_view name; // as reports call it (host/sources/SourceNames.h); empty: no source has this id
    std::size_t nth = 0;   // how many before it have the same name, as those that ask the same directory
};

std::vector<EnabledSource> enabledSources();

// What reports call the source with this id of the source list; empty: no source has it.
std::string_view sourceNameOf(std::string_view id);

} // namespace wideseek
