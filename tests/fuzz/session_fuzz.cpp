// A session of the random driver (tests/support/Session.h), each choice of which is a byte.

#include "tests/fuzz/Fuzz.h"
#include "tests/support/Session.h"

#include <gtest/gtest.h>

#include <algorithm>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // A failed expectation ends the process with the input that made it fail.
    testing::GTEST_FLAG(throw_on_failure) = true;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::size_t next = 0;
    // Behind the end of the input every choice is the last one. The first ones are the rare events, and a session of
    // these alone, such as requests inside requests, would never end.
    test::playSession(static_cast<long>(std::min<std::size_t>(size, 1000) / 4),
                      [&](int end) { return next < size ? data[next++] % end : end - 1; });
    return 0;
}
