// A session of the random driver (tests/support/Session.h), each choice of which is a byte.

#include "tests/fuzz/Fuzz.h"
#include "tests/support/Session.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // A failed expectation ends the process with the input that made it fail.
    testing::GTEST_FLAG(throw_on_failure) = true;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::size_t next = 0;
    test::Session session([&](int end) { return next < size ? data[next++] % end : 0; });
    session.run(static_cast<long>(std::min<std::size_t>(size, 1000) / 4));
    return 0;
}
