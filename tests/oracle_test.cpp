// Random sessions against the oracle: every page that arrives is the oracle's.
//
// A failure prints the start value of its session and the last steps. This replays it, or runs one long session:
//
//     WIDESEEK_RANDOM_START=7 WIDESEEK_RANDOM_STEPS=1000000 build/dev/wideseek_tests --gtest_filter='Random.*'

#include "tests/support/Session.h"

#include <cstdlib>
#include <random>

namespace {

long fromEnvironment(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtol(text, nullptr, 10) : otherwise;
}

TEST(Random, EverySessionGetsThePagesOfTheOracle) {
    const long first = fromEnvironment("WIDESEEK_RANDOM_START", 1);
    const long steps = fromEnvironment("WIDESEEK_RANDOM_STEPS", 1000);
    const long last = std::getenv("WIDESEEK_RANDOM_START") ? first : first + 99;
    for (long start = first; start <= last && !HasFailure(); ++start) {
        std::mt19937_64 random(static_cast<unsigned long long>(start));
        test::Session session([&](int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); });
        session.run(steps);
        EXPECT_FALSE(HasFailure()) << "The last steps of the session:" << session.history()
                                   << "\nReplay it with WIDESEEK_RANDOM_START=" << start
                                   << " WIDESEEK_RANDOM_STEPS=" << steps
                                   << " build/dev/wideseek_tests --gtest_filter='Random.*'";
    }
}

} // namespace
