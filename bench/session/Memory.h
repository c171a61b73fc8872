// What the rows of a search take: held, at the peak of a full search, and in allocations.
#pragma once

#include "bench/session/Population.h"

#include <cstddef>

namespace bench {

struct MemoryUse {
    std::size_t rows = 0;
    double bytesHeld = 0;       // per row
    double bytesOfRow = 0;      // per row: the row with its characters, its node in the list and its node in the filter
    double bytesAtPeak = 0;     // per row, with the hits of the source that is being worked
    double madePerRow = 0;      // allocations of the module in a full search, per row
    double madeBySources = 0;   // allocations of the sources in it, per row
    double madeByNarrowing = 0; // allocations in all while every row is looked at and stays
    double madeByRepeat = 0;    // allocations in all for the same page again
};

// Searches the contacts on the live phone, without the buddies: these come one by one, without an end that could be
// told from the module's own work.
MemoryUse measureMemory(Population population);

} // namespace bench
