// Every allocation can fail: that of a row, of a page, of a message, of a word in a log line. A step is done again and
// again, and each time a later one of its allocations fails: once that one alone, once all from it on until the step is
// over. Whatever fails, nothing is thrown, no lock stays held, everything is given back, and the next search is right.
//
// The steps are those of random sessions beside the oracle. A failure prints its session; this replays it, or plays
// more:
//
//     WIDESEEK_RANDOM_START=7 WIDESEEK_MEMORY_SESSIONS=1 build/dev/wideseek_memory_tests --gtest_filter='*Session*'

#include "host/contacts/CallLogFile.h"
#include "host/files/TemporaryFolder.h"
#include "host/kernel/HeldLocks.h"
#include "platform/Presence.h"
#include "tests/memory/FailingAllocations.h"
#include "tests/support/Session.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <utility>

namespace {

using namespace test;

struct Buddies final : CPresenceContactManager {
    bool GetListByGroupId(ContactBuddyListData* pList, int&, int, const std::string& key, AttrType) override {
        if (std::string("5371").starts_with(key)) {
            pList->listContactId = {7};
        }
        return true;
    }
    int GetContactDetail(PresenceInfo& info, PresenceType, int) override {
        info.strName = "Bud with a name that is no short string";
        info.listAttr = {{"", "5371", ATTRIBUTE_TYPE_PHONE}, {"", "5371", ATTRIBUTE_TYPE_PHONE}};
        return 1;
    }
};

class World {
public:
    World() {
        m_phone.local->contacts = {{"Ann with a name that is no short string", {"5311", "5312", "5311"}, "sales"},
                                   {"Zed", {"99"}}};
        m_phone.recent->list = {{"Cal", {"531"}, "a call with an extra that is no short string"}, {"", {"44"}, ""}};
        m_phone.phone.setPresence(&m_buddies);
    }

    // A request that is refused gets no page, not even by way of the one before it.
    void type(const std::string& key) {
        Wideseek_SearchUnion("5", 0, 10, nullptr);
        const bool taken = Wideseek_SearchUnion(key, 0, 10, &m_screen);
        m_phone.run(100ms);
        EXPECT_TRUE(taken || m_screen.pages.empty());
    }

    void answerLdap() {
        host::LdapAnswer answer;
        {
            const NoFault none; // the server has its own memory
            answer = ldapAnswerOf({{"Lou with a name that is no short string", {"5319", "53"}}}, true);
        }
        m_phone.ldap->answer(std::move(answer));
        m_phone.run();
    }

    void readList() {
        try {
            m_phone.phone.announceConfigChange(ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK);
        } catch (const std::bad_alloc&) {
            // Whoever announces it tries again.
        }
        m_phone.run();
    }

    void restart() {
        NS_WS::CWideseekController::ReleaseInstance();
        Wideseek_PreInit();
    }

    void ask() {
        NS_WS::WideseekCfgListData sources;
        if (const auto* controller = NS_WS::CWideseekController::GetInstance()) {
            controller->GetEnableCfgList(&sources);
        }
        EXPECT_TRUE(sources.listItem.empty() || sources.listItem.size() == 3);
        CallLogSearchListData calls;
        calls.iSearchCount = 10;
        const bool told = Wideseek_SearchRecentOutCall(&calls);
        EXPECT_EQ(calls.listItem.size(), told ? 2U : 0U);
    }

    // What a key finds that every source is asked for, with LDAP's answer.
    std::vector<std::string> searchAfresh() {
        type("9");
        m_screen.pages.clear();
        type("53");
        answerLdap();
        m_phone.run(1s);
        return m_screen.pages.empty() ? std::vector<std::string>{"no page"} : rowsIn(m_screen.pages.back());
    }

private:
    Buddies m_buddies;
    SteppedPhone m_phone{{localId, ldapId, buddiesId}};
    Screen m_screen;
};

struct Step {
    const char* name;
    void (*happens)(World&);
};

constexpr Step steps[] = {
    {"a key", [](World& world) { world.type("53"); }},
    {"LDAP's answer", [](World& world) { world.answerLdap(); }},
    {"questions", [](World& world) { world.ask(); }},
    {"a message about the source list", [](World& world) { world.readList(); }},
    {"another start", [](World& world) { world.restart(); }},
};

// Does the steps up to this one with its nth allocation failing. How many failed.
std::size_t play(std::size_t last, std::size_t nth, bool lasts, const std::vector<std::string>& right) {
    World world;
    for (std::size_t i = 0; i < last; ++i) {
        steps[i].happens(world);
    }
    allocationFault = {nth, lasts, 0};
    EXPECT_NO_THROW(steps[last].happens(world));
    const std::size_t failed = std::exchange(allocationFault, {}).failed;
    EXPECT_EQ(host::heldLocks(), 0U);
    EXPECT_EQ(world.searchAfresh(), right);
    return failed;
}

// What the sessions have seldom or not at all: presence buddies, answers that pass through the LDAP module, questions
// that are no search, a source list that stays as it is, a start.
TEST(Memory, WhateverAllocationFailsTheNextSearchIsRight) {
    const std::vector<std::string> right = World().searchAfresh();
    EXPECT_EQ(right.size(), 5U) << testing::PrintToString(right);
    for (std::size_t step = 0; step < std::size(steps); ++step) {
        for (const bool lasts : {false, true}) {
            std::size_t nth = 1;
            for (std::size_t failed = 1; failed > 0 && !HasFailure(); ++nth) {
                SCOPED_TRACE(steps[step].name + std::string(lasts ? ", from allocation " : ", allocation ") +
                             std::to_string(nth));
                failed = play(step, nth, lasts, right);
            }
            EXPECT_GT(nth, 2U) << steps[step].name << " allocates nothing";
        }
    }
}

// The pages of the faulty step and the next key's rows are those of the same session without a fault, but for what was
// given up: then fewer pages come, and the next key asks all sources. A search that asks all sources may also go
// without one that there is no memory for, and its pages count fewer rows.
void expectNoMoreLostThanGivenUp(const Aftermath& found, const Aftermath& right) {
    const auto print = [](const auto& strings) { return testing::PrintToString(strings); };
    EXPECT_TRUE(right.beganAnew ||
                std::includes(right.pages.begin(), right.pages.end(), found.pages.begin(), found.pages.end()))
        << print(found.pages) << "\nis more than " << print(right.pages);
    EXPECT_TRUE(found.nextKey == right.nextKey || found.nextKey == right.afresh)
        << print(found.nextKey) << "\nis neither " << print(right.nextKey) << "\nnor " << print(right.afresh);
}

TEST(Memory, WhateverAllocationFailsInASessionTheNextSearchIsTheOracles) {
    const long first = fromEnvironment("WIDESEEK_RANDOM_START", 1);
    const long last = first + fromEnvironment("WIDESEEK_MEMORY_SESSIONS", 150) - 1;
    int faults = 0;
    for (long start = first; start <= last && !HasFailure(); ++start) {
        const Aftermath right = playSessionWithFault(choicesFrom(start), {});
        EXPECT_FALSE(HasFailure()) << "Session " << start << " without a fault:" << right.history;
        for (const bool lasts : {false, true}) {
            for (std::size_t nth = 1, failed = 1; failed > 0 && !HasFailure(); ++nth) {
                const Aftermath found = playSessionWithFault(choicesFrom(start), {nth, lasts, 0});
                failed = found.failed;
                faults += failed > 0 ? 1 : 0;
                if (found.wasWork) {
                    EXPECT_EQ(found.afresh, right.afresh);
                }
                if (found.wasWork && !found.sourceFailed) {
                    expectNoMoreLostThanGivenUp(found, right);
                }
                EXPECT_FALSE(HasFailure()) << "Session " << start << (lasts ? " from allocation " : " with allocation ")
                                           << nth << " failing:" << found.history;
            }
        }
    }
    EXPECT_TRUE(faults > 0 || first == last);
    RecordProperty("faults", faults);
}

// A call that the caller's list has no room for is freed once. Nine calls make the list grow twice.
TEST(Memory, ACallThatTheListHasNoRoomForIsFreedOnce) {
    const host::TemporaryFolder folder;
    host::CallLogFile log(folder.path() / "call_log.csv", {});
    for (int i = 0; i < 9; ++i) {
        log.add({"Cal with a name that is no short string", "531" + std::to_string(i), ""});
    }
    std::string error;
    OxVector<GeneralDirItemData> all;
    ASSERT_EQ(log.outgoing(all, 0, 9, error), 9); // from now on the log itself needs hardly any memory
    bool failed = true;
    for (std::size_t nth = 1; failed; ++nth) {
        OxVector<GeneralDirItemData> calls;
        allocationFault = {nth, false, 0};
        try {
            log.outgoing(calls, 0, 9, error);
        } catch (const std::bad_alloc&) {
            EXPECT_LT(calls.Count(), 9);
        }
        failed = std::exchange(allocationFault, {}).failed > 0;
    }
}

} // namespace
