// The contact of a row in full: its numbers, and what each source knows of it.
//
//     const ContactDetails details = detailsOf(*model.selected(), model.isRecent(), phone);
//     for (const host::ContactNumber& number : details.numbers) { ... }
//
// One thread.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/Phone.h"
#include "host/sources/ContactLookup.h"

#include <cstddef>
#include <string>
#include <vector>

namespace wideseek {

struct ContactDetails {
    struct Source {
        std::string label; // empty: the row's source is not known
        host::KnownContact known;
    };

    std::string name;                         // empty: none but the number
    std::vector<host::ContactNumber> numbers; // all that the sources have, each once; the row's is among them
    std::vector<Source> sources;              // that hold a contact of this name with the row's number, in their order
    std::size_t chosen = 0;                   // of numbers; the row's at first
};

// Looks the row up in all enabled sources. What none of them holds is known by the row alone: of a recent call, or of a
// server's answer.
ContactDetails detailsOf(const WideseekItemData& row, bool recentCall, const host::Phone& phone);

} // namespace wideseek
