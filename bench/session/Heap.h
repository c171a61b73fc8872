// What the process takes from the heap with new, while somebody wants to know.
#pragma once

#include <cstddef>

namespace bench {

struct HeapCount {
    std::size_t allocations = 0;      // outside of what is said to be apart
    std::size_t allocationsApart = 0; // in what is
    std::ptrdiff_t bytes = 0;         // taken and not given back, with what the heap needs to manage each block
    std::ptrdiff_t peak = 0;          // the most that this was
};

// Counts from its construction on. One at a time; everything from any thread.
class HeapMeter {
public:
    HeapMeter();
    ~HeapMeter();
    HeapMeter(const HeapMeter&) = delete;
    HeapMeter& operator=(const HeapMeter&) = delete;

    HeapCount count() const;

    // Begins again with no allocations, and with the peak where the bytes are now.
    void restart();

    // What all threads allocate from now on counts apart, or no longer.
    static void setApart(bool apart);
};

} // namespace bench
