// Every allocation can fail: that of a row, of a page, of a message, of a word in a log line. Each step of a session is
// done again and again, and each time a later one of its allocations fails: once that one alone, once all from it on
// until the step is over. Whatever fails, nothing is thrown, no lock stays held, everything is given back, and the next
// search is right.

#include "host/contacts/CallLogFile.h"
#include "host/files/TemporaryFolder.h"
#include "host/kernel/HeldLocks.h"
#include "platform/Presence.h"
#include "tests/memory/FailingAllocations.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <pugixml.hpp>
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
        m_phone.remote->contacts = {{"Ann with a name that is no short string", {"5312", "5313"}}, {"Rob", {"5371"}}};
        m_phone.calls->contacts = {{"Cal", {"531"}}};
        m_phone.broad->contacts = {{"Eve", {"53"}}};
        m_phone.recent->list = {{"Cal", {"531"}, "a call with an extra that is no short string"}, {"", {"44"}, ""}};
        m_phone.phone.setPresence(&m_buddies);
        m_phone.phone.setConfig("FeaturesRecentCallEnable", 1);
    }

    // As after the phone's start.
    void begin() {
        NS_WS::CWideseekController::ReleaseInstance();
        m_phone.run(1s);
        m_screen.pages.clear();
        m_phone.log.clear();
        EXPECT_TRUE(Wideseek_PreInit());
    }

    void type(const std::string& key, int from = 0, int count = 10) {
        m_key = key;
        Wideseek_SearchUnion(key, from, count, &m_screen);
        m_phone.run();
    }

    void answerLdap() {
        const AllocationFault kept = std::exchange(allocationFault, {}); // the server has its own memory
        host::LdapAnswer answer =
            ldapAnswerOf({{"Lou with a name that is no short string", {"5312", "53"}}, {"Cal", {"531"}}}, true);
        allocationFault = kept;
        m_phone.ldap->answer(std::move(answer));
        m_phone.run();
    }

    void expire() { m_phone.run(100ms); }

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
        EXPECT_TRUE(sources.listItem.empty() || sources.listItem.size() == 6);
        CallLogSearchListData calls;
        calls.iSearchCount = 10;
        const bool told = Wideseek_SearchRecentOutCall(&calls);
        EXPECT_EQ(calls.listItem.size(), told ? 2U : 0U);
        Wideseek_ResetKey();
        Wideseek_ResetCallBack(&m_screen);
    }

    // What a key that begins with the last one finds: a source that failed for it stays away.
    std::vector<std::string> narrow() { return search(std::string("531").substr(0, m_key.size() + 1)); }

    // What a key finds that every source is asked for.
    std::vector<std::string> searchAfresh() {
        search("9");
        return search("53");
    }

private:
    // With LDAP's answer.
    std::vector<std::string> search(const std::string& key) {
        m_screen.pages.clear();
        type(key);
        m_phone.ldap->answer(ldapAnswerOf({{"Lou", {"5319"}}}, true));
        m_phone.run(1s);
        return m_screen.pages.empty() ? std::vector<std::string>{"no page"} : rowsIn(m_screen.pages.back());
    }

    Buddies m_buddies;
    SteppedPhone m_phone{{localId, callsId, ldapId, remoteId, enterpriseId, buddiesId}};
    SteadyScreen m_screen;
    std::string m_key;
};

struct Step {
    const char* name;
    void (*happens)(World&);
};

constexpr Step steps[] = {
    {"a key", [](World& world) { world.type("5", 0, 30); }},
    {"the timer", [](World& world) { world.expire(); }},
    {"LDAP's answer", [](World& world) { world.answerLdap(); }},
    {"a longer key", [](World& world) { world.type("53"); }},
    {"its second page", [](World& world) { world.type("53", 2, 2); }},
    {"LDAP's second answer", [](World& world) { world.answerLdap(); }},
    {"no key", [](World& world) { world.type(""); }},
    {"questions", [](World& world) { world.ask(); }},
    {"a key after them", [](World& world) { world.type("5"); }},
    {"a changed source list", [](World& world) { world.readList(); }},
    {"another start", [](World& world) { world.restart(); }},
};

// Does the steps up to this one with its nth allocation failing. How many failed.
std::size_t play(World& world, std::size_t last, std::size_t nth, bool lasts) {
    world.begin();
    for (std::size_t i = 0; i < last; ++i) {
        steps[i].happens(world);
    }
    allocationFault = {nth, lasts, 0};
    EXPECT_NO_THROW(steps[last].happens(world));
    const std::size_t failed = allocationFault.failed;
    allocationFault = {};
    return failed;
}

TEST(Memory, WhateverAllocationFailsTheNextSearchIsRight) {
    pugi::set_memory_management_functions([](std::size_t size) { return ::operator new(size, std::nothrow); },
                                          [](void* block) { ::operator delete(block); });
    World world;
    std::size_t faults = 0;
    for (std::size_t step = 0; step < std::size(steps); ++step) {
        play(world, step, 0, false);
        const std::vector<std::string> narrowed = world.narrow();
        const std::vector<std::string> right = world.searchAfresh();
        EXPECT_EQ(right.size(), 8U) << testing::PrintToString(right);
        for (const bool lasts : {false, true}) {
            std::size_t nth = 1;
            for (; play(world, step, nth, lasts) > 0; ++nth, ++faults) {
                SCOPED_TRACE(steps[step].name + std::string(lasts ? ", from allocation " : ", allocation ") +
                             std::to_string(nth));
                ASSERT_EQ(host::heldLocks(), 0U);
                const std::vector<std::string> left = world.narrow();
                for (const std::string& row : left) {
                    ASSERT_EQ(std::count(narrowed.begin(), narrowed.end(), row), 1) << row;
                }
                ASSERT_GE(left.size() + 2, narrowed.size()) << "more is missing than a source has";
                ASSERT_EQ(world.searchAfresh(), right);
                ASSERT_FALSE(HasFailure());
            }
            EXPECT_GT(nth, 1U) << steps[step].name << " allocates nothing";
        }
    }
    RecordProperty("faults", static_cast<int>(faults));
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
