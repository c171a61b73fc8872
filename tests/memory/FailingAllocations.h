// Lets allocations of the calling thread fail, of any kind that C++ makes, and counts their bytes. A program that is
// linked with this has a global operator new of its own.
//
//     allocationFault = {.until = 3, .lasts = false};
//     workThatAllocates();
//     const std::size_t failed = std::exchange(allocationFault, {}).failed;
#pragma once

#include "tests/support/SteppedPhone.h"

#include <cstddef>
#include <utility>

namespace test {

struct AllocationFault {
    std::size_t until = 0;  // allocations until one fails; 0: none does
    bool lasts = false;     // all after it fail, too
    std::size_t failed = 0; // how many have failed
};

extern thread_local AllocationFault allocationFault;

// How much of what the calling thread allocated it has not freed, in bytes.
struct AllocatedBytes {
    std::size_t now = 0;
    std::size_t peak = 0;
};

extern thread_local AllocatedBytes allocatedBytes;

// Shows pages, which is the screen's own business and not the search's: no allocation of it fails.
struct SteadyScreen : Screen {
    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        const AllocationFault kept = std::exchange(allocationFault, {});
        Screen::OnTaskActionCallback(pAction);
        allocationFault = kept;
    }
};

} // namespace test
