// Random sessions against the oracle: every page that arrives is the oracle's; and what narrowing finds.
//
// A failure prints the start value of its session and the last steps. This replays it, or runs one long session:
//
//     WIDESEEK_RANDOM_START=7 WIDESEEK_RANDOM_STEPS=1000000 build/dev/wideseek_tests --gtest_filter='Random.*'

#include "tests/support/Oracle.h"
#include "tests/support/Session.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// Of sources that answer completely and share no names, so that who is asked first does not matter.
TEST(Random, NarrowingFindsWhatSearchingAfreshFinds) {
    const auto below = test::choicesFrom(1);
    test::SteppedPhone phone({test::localId, test::remoteId, test::callsId});
    test::Screen screen;
    for (int round = 0; round < 300; ++round) {
        char name = 'A';
        for (const auto& source : {phone.local, phone.remote, phone.calls}) {
            source->contacts.clear();
            for (int i = below(5); i >= 0; --i) {
                source->contacts.push_back({std::string(1, name++) + (below(2) ? "nna" : " Ann"), {}});
                for (int numbers = below(4); numbers > 0; --numbers) {
                    source->contacts.back().numbers.push_back(std::to_string(15 + below(8) * 51));
                }
            }
        }
        Wideseek_ResetKey();
        std::string key;
        while (key.size() < 4) {
            key += round % 2 ? "156"[below(3)] : "an"[below(2)];
            phone.type(key, screen, 0, 0);
        }
        const std::string narrowed = test::Oracle::textOf(screen.pages.back());
        Wideseek_ResetKey();
        phone.type(key, screen, 0, 0);
        EXPECT_EQ(narrowed, test::Oracle::textOf(screen.pages.back()));
    }
}

TEST(Random, EverySessionGetsThePagesOfTheOracle) {
    const long first = test::fromEnvironment("WIDESEEK_RANDOM_START", 1);
    const long steps = test::fromEnvironment("WIDESEEK_RANDOM_STEPS", 1000);
    const long last = std::getenv("WIDESEEK_RANDOM_START") ? first : first + 99;
    for (long start = first; start <= last && !HasFailure(); ++start) {
        const std::string history = test::playSession(steps, test::choicesFrom(start));
        EXPECT_FALSE(HasFailure()) << "The last steps of the session:" << history
                                   << "\nReplay it with WIDESEEK_RANDOM_START=" << start
                                   << " WIDESEEK_RANDOM_STEPS=" << steps
                                   << " build/dev/wideseek_tests --gtest_filter='Random.*'";
    }
}

} // namespace
