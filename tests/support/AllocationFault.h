// Lets allocations of the calling thread fail, of any kind that C++ makes, in a program that counts them
// (tests/memory/FailingAllocations.h); in any other one nothing fails.
//
//     allocationFault = {.until = 3, .lasts = false};
//     workThatAllocates();
//     const std::size_t failed = std::exchange(allocationFault, {}).failed;
#pragma once

#include <cstddef>
#include <utility>

namespace test {

struct AllocationFault {
    std::size_t until = 0;  // allocations until one fails; 0: none does
    bool lasts = false;     // all after it fail, too
    std::size_t failed = 0; // how many have failed
};

inline thread_local AllocationFault allocationFault;

// While it lives, nothing fails: for what a test does for itself in the midst of the phone's work.
class NoFault {
public:
    NoFault() : m_kept(std::exchange(allocationFault, {})) {}
    ~NoFault() { allocationFault = m_kept; }

    NoFault(const NoFault&) = delete;
    NoFault& operator=(const NoFault&) = delete;

private:
    AllocationFault m_kept;
};

} // namespace test
