// A session at the phone and, at the same time, on the oracle's paper: screens type, page, leave and come back, sources
// fail, LDAP answers late, twice, never or for old keys, the source list changes, the search stops and starts. A random
// generator or a fuzzer says what happens next.
//
//     const std::string history = playSession(1000, choicesFrom(7));
//     EXPECT_FALSE(HasFailure()) << history;
#pragma once

#include "tests/support/AllocationFault.h"

#include <cstddef>
#include <functional>
#include <set>
#include <string>

namespace test {

// Plays this many steps and fails the test when a page or a question to a source is not the oracle's. below(n) gives
// the next number of the session, from 0 to n - 1; n is at most 256. Returns the last steps.
std::string playSession(long steps, std::function<int(int)> below);

// What has come of a session in which memory ran out.
struct Aftermath {
    std::size_t failed = 0;        // allocations; none when the step has too few for the fault
    bool wasWork = false;          // the step was the search's own, with nobody coming in and nothing left for it
    bool sourceFailed = false;     // for want of memory
    bool beganAnew = false;        // the step dropped the rows of before
    std::set<std::string> pages;   // that came of it until the phone was at rest, without their rows
    std::set<std::string> nextKey; // rows for a longer key, with LDAP's
    std::set<std::string> afresh;  // rows for the same key when it has been reset
    std::string history;           // the last steps
};

// Plays a short session, in one step of which the phone's allocations fail as the fault says; which step it is depends
// on below alone. Fails the test when something is thrown, stays locked or is not given back, when a page that comes
// does not hold together, and when a page or a question is not the oracle's before the step, or after it and a reset.
Aftermath playSessionWithFault(std::function<int(int)> below, AllocationFault fault);

// The numbers of a random session, the same for the same start value.
std::function<int(int)> choicesFrom(long start);

// A number out of the environment, for who wants more of the tests or one of them again.
long fromEnvironment(const char* name, long otherwise);

} // namespace test
