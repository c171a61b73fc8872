// A session at the phone and, at the same time, on the oracle's paper: screens type, page, leave and come back, sources
// fail, LDAP answers late, twice, never or for old keys, the source list changes, the search stops and starts. A random
// generator or a fuzzer says what happens next.
//
//     const std::string history = playSession(1000, [&](int end) { return random() % end; });
//     EXPECT_FALSE(HasFailure()) << history;
#pragma once

#include <functional>
#include <string>

namespace test {

// Plays this many steps and fails the test when a page or a question to a source is not the oracle's. below(n) gives
// the next number of the session, from 0 to n - 1; n is at most 256. Returns the last steps.
std::string playSession(long steps, std::function<int(int)> below);

} // namespace test
