// Lets allocations of the calling thread fail, of any kind that C++ makes. A program that is linked with this has a
// global operator new of its own.
//
//     allocationFault = {.until = 3, .lasts = false};
//     workThatAllocates();
//     const std::size_t failed = std::exchange(allocationFault, {}).failed;
#pragma once

#include <cstddef>

namespace test {

struct AllocationFault {
    std::size_t until = 0;  // allocations until one fails; 0: none does
    bool lasts = false;     // all after it fail, too
    std::size_t failed = 0; // how many have failed
};

extern thread_local AllocationFault allocationFault;

} // namespace test
