// A program that is linked with this has a global operator new of its own, by which allocations fail as
// AllocationFault.h says, those of its XML too, and which counts their bytes.
#pragma once

#include "tests/support/AllocationFault.h"

#include <cstddef>

namespace test {

// How much of what the calling thread allocated it has not freed, in bytes.
struct AllocatedBytes {
    std::size_t now = 0;
    std::size_t peak = 0;
};

extern thread_local AllocatedBytes allocatedBytes;

} // namespace test
