// The phone's messaging: reference counts, timers, task actions, memory, log, configuration messages.

#include "host/Phone.h"
#include "host/files/FileWatch.h"
#include "host/kernel/HeldLocks.h"
#include "platform/AppLog.h"
#include "platform/BaseHelper.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "platform/TrackedMemory.h"
#include "tests/support/SteppedPhone.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace std::chrono_literals;
using ETL_MsgQueueHelper::chMsgProcesser;
using ETL_MsgQueueHelper::chThreadTimer;
using ETL_MsgQueueHelper::msgObject;
using host::Driver;
using host::Phone;
using testing::ElementsAre;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

// "file:line x blocks" of each place that has blocks outstanding
std::string outstanding() {
    std::string sites;
    for (const auto& site : Phone::outstanding()) {
        sites += site.file + ":" + std::to_string(site.line) + "x" + std::to_string(site.blocks) + " ";
    }
    return sites;
}

// A receiver that is a task action as well, so that the counted part is not where its block begins.
struct Thing : NS_TA::CTaskActionCallbackBase, NS_TA::CTaskAction {
    static Thing* make(std::function<void()> exec = [] {}) {
        auto* thing = new ("thing", 1) Thing;
        thing->SetCreatFlag(true);
        thing->onExec = std::move(exec);
        return thing;
    }
    ~Thing() override {
        app_log(1, 6, "gone\n");
        WithdrawMessages();
    }
    bool Exec() override {
        onExec();
        return true;
    }
    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override { onAction(*pAction); }
    int onTimer(msgObject&) {
        ++expiries;
        onExpiry();
        return 0;
    }
    bool set(chThreadTimer& timer, long long period) {
        return timer.SetTimer(period, nullptr, this, static_cast<int (chMsgProcesser::*)(msgObject&)>(&Thing::onTimer));
    }

    std::function<void()> onExec;
    std::function<void(NS_TA::CTaskAction&)> onAction = [](auto&) {};
    std::function<void()> onExpiry = [] {};
    int expiries = 0;
};

void* threadOf(const char* name) {
    return ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(name);
}

class SteppedHost : public testing::Test {
protected:
    test::TempRoot root;
    Lines lines;
    std::unique_ptr<Phone> phone = make();

    std::unique_ptr<Phone> make() {
        return std::make_unique<Phone>(host::PhoneOptions{
            .root = root.path(),
            .driver = Driver::stepped,
            .ldapDelay = {},
            .contactFiles = false,
            .log = [this](int module, int level, std::string_view line) {
                lines.push_back(std::to_string(module) + "/" + std::to_string(level) + " " + std::string(line));
            }});
    }
    void TearDown() override {
        phone.reset();
        EXPECT_EQ(outstanding(), "");
    }
    void run(host::Duration by = 0ms) { phone->kernel().advance(by); }
};

TEST_F(SteppedHost, TrackedMemoryNamesWhatIsOutstandingAndFailsTheNthAllocation) {
    Phone::failAllocation(2);
    void* first = operator new(8, "b", 2);
    EXPECT_EQ(operator new(8, "b", 2), nullptr);
    void* third = operator new(0, "a", 9);
    Phone::failAllocation(1);
    Phone::failAllocation(0);
    void* fourth = operator new(8, "b", 2);
    ASSERT_TRUE(first && third && fourth);
    EXPECT_EQ(outstanding(), "a:9x1 b:2x2 ");
    for (void* block : {first, third, fourth, static_cast<void*>(nullptr)}) {
        operator delete(block, "c", 1);
    }
    void* stray = root.path().string().size() > 1 ? this : nullptr;
    EXPECT_DEATH(operator delete(stray, "c", 7), "c:7: gives back the block");
}

TEST_F(SteppedHost, ActionsRunOnTheSearchThreadAndCallbacksOnTheReceiversUntilTheLastRelease) {
    Thing screen;
    Thing other;
    other.SetCallBackThread(threadOf("ThreadMessage"));
    std::string seen;
    const auto on = [&](const char* what, const char* thread) {
        seen += std::string(what) + (phone->kernel().currentThread() == threadOf(thread) ? " " : " elsewhere ");
    };
    Thing* action = Thing::make([&] { on("exec", "ThreadLocalContactSearch"); });
    screen.onAction = [&](auto& received) { on(&received == action ? "screen" : "stray", "ThreadMain"); };
    other.onAction = [&](auto&) { on("other", "ThreadMessage"); };
    EXPECT_EQ(TaskAction_ExecAction(nullptr), 0);
    screen.SendMessageToCallingThread(nullptr);
    action->Release(); // never below zero
    action->AddRef();
    EXPECT_NE(TaskAction_ExecAction(action), 0);
    EXPECT_NE(TaskAction_ExecAction(action), 0);
    screen.SendMessageToCallingThread(action);
    other.SendMessageToCallingThread(action);
    NS_TA::CTaskAction onTheStack; // is not destroyed by its last release
    TaskAction_ExecAction(&onTheStack);
    EXPECT_EQ(seen, "") << "nothing runs from within a call";
    run();
    EXPECT_EQ(seen, "exec exec screen other ");
    EXPECT_TRUE(lines.empty());
    action->Release();
    EXPECT_EQ(lines, Lines{"1/6 gone"});
}

TEST_F(SteppedHost, ATimerExpiresAtItsPeriodUntilItIsKilledOrSetAnewAlsoByItsHandler) {
    Thing receiver;
    auto timer = std::make_unique<chThreadTimer>(0);
    const auto after = [&](host::Duration time) {
        run(time);
        return receiver.expiries;
    };
    ASSERT_TRUE(receiver.set(*timer, 100) && timer->IsTimerRuning());
    EXPECT_EQ(after(99ms), 0);
    EXPECT_EQ(after(1ms), 1);
    EXPECT_EQ(after(250ms), 3);
    ASSERT_TRUE(receiver.set(*timer, 100)) << "the period begins anew";
    EXPECT_EQ(after(99ms), 3);
    timer->KillTimer();
    EXPECT_FALSE(timer->IsTimerRuning());
    EXPECT_EQ(after(1h), 3);
    receiver.set(*timer, 10);
    receiver.onExpiry = [&] {
        timer->KillTimer();
        receiver.set(*timer, 30);
        receiver.onExpiry = [&] { timer.reset(); };
    };
    EXPECT_EQ(after(10ms + 29ms), 4);
    EXPECT_EQ(after(1h), 5);
    EXPECT_EQ(phone->kernel().pending(), 0U);
    for (const bool timerFirst : {true, false}) {
        auto goes = std::make_unique<Thing>();
        timer = std::make_unique<chThreadTimer>(0);
        goes->set(*timer, 10);
        timerFirst ? timer.reset() : goes.reset();
        EXPECT_EQ(phone->kernel().pending(), 0U);
    }
}

TEST_F(SteppedHost, GoingDownGivesBackEverythingThatIsQueuedAndLeavesCallsThatFail) {
    Thing receiver;
    chThreadTimer timer(0);
    receiver.set(timer, 10);
    int execs = 0;
    receiver.onAction = [&](auto&) { ++execs; };
    TaskAction_ExecAction(Thing::make([&] { ++execs; }));
    receiver.SendMessageToCallingThread(Thing::make());
    EXPECT_EQ(outstanding(), "thing:1x2 ");
    phone.reset();
    EXPECT_EQ(outstanding(), "");
    EXPECT_EQ(execs, 0);
    EXPECT_EQ(lines, (Lines{"1/6 gone", "1/6 gone"})) << "the log works to the last";
    WideseekItemListData query;
    EXPECT_FALSE(receiver.set(timer, 10) || Directory_LocalDirWideseek(&query));
    EXPECT_FALSE(Ldap_SearchAsync("a", 0, 1, &receiver, nullptr) || TaskAction_ExecAction(&receiver));
    EXPECT_EQ(threadOf("ThreadMain"), nullptr);
    EXPECT_EQ(configParser_GetConfigInt("FeaturesRecentCallEnable"), -1);
    phone = make();
    run(1s);
    EXPECT_EQ(receiver.expiries, 0);
    receiver.set(timer, 10);
    run(10ms);
    EXPECT_EQ(receiver.expiries, 1) << "objects that outlive a phone work with the next";
}

int handled = 0;
int handle(msgObject& msg) {
    EXPECT_EQ(msg.uMessageId, ETL_MsgQueueHelper::MSG_CONFIG_CHANGED);
    EXPECT_EQ(msg.llParam1, ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK);
    return ++handled;
}
int refuse(msgObject& msg) {
    ADD_FAILURE() << msg.uMessageId << " is not in the registered range";
    return 0;
}

TEST_F(SteppedHost, AConfigurationChangeReachesEachRegisteredHandlerOnce) {
    handled = 0;
    constexpr unsigned int id = ETL_MsgQueueHelper::MSG_CONFIG_CHANGED;
    EtlMsgHandler_RegisterMsgHandle(id, id, handle);
    EtlMsgHandler_RegisterMsgHandle(id - 7, id + 9, handle);
    EtlMsgHandler_RegisterMsgHandle(id - 7, id - 1, refuse);
    EtlMsgHandler_RegisterMsgHandle(id + 1, id + 9, refuse);
    phone->announceConfigChange(ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK);
    EXPECT_EQ(handled, 0) << "never from within the call";
    EXPECT_EQ(phone->kernel().ready().at(0).thread, "ThreadMessage");
    run();
    EXPECT_EQ(handled, 1);
}

TEST_F(SteppedHost, ConfigurationValuesAreIntegersOfAnySectionAsTheFileStands) {
    const char* file = "config/data/phone.ini";
    const auto value = [](const char* key) { return configParser_GetConfigInt(key); };
    EXPECT_EQ(value("A"), -1) << "no file";
    EXPECT_TRUE(phone->problems().empty()) << "which is no problem";
    root.write(file, "A = 1\n[features]\nB=-7 ; why\nC = 12x\nD =\nE=99999999999\nF=+3\n[other]\nB = -7\nG = 1\n"
                     "[third]\nG = 2\nI = 4\n  2\nnonsense\nI = 43\nJ = " +
                         std::string(300, '1') + "\nK = 5");
    const std::pair<const char*, int> cases[] = {{"A", 1},  {"B", -7}, {"C", -1}, {"D", -1}, {"E", -1}, {"F", 3},
                                                 {"G", -1}, {"H", -1}, {"I", 42}, {"J", -1}, {"K", 5}};
    for (const auto& [key, expected] : cases) {
        EXPECT_EQ(value(key), expected) << key;
    }
    EXPECT_THAT(phone->problems(), ElementsAre(HasSubstr("phone.ini:16: sets I again"),
                                               HasSubstr("phone.ini:17: is skipped: it is longer than 199"),
                                               HasSubstr("phone.ini:15: is skipped; write"),
                                               HasSubstr("G has different values in [other] and [third]")));
    phone->setConfig("A", 5);
    root.write(file, "B = 8\n");
    EXPECT_EQ(value("A"), 5);
    EXPECT_EQ(value("B"), 8);
    EXPECT_EQ(value("F"), -1);
}

TEST_F(SteppedHost, AnInterruptionComesInAtACallKnowsTheLocksAndIsNotInterrupted) {
    phone->setInterruption([&](host::PlatformCall call) {
        EXPECT_EQ(call, host::PlatformCall{host::PlatformFunction::log});
        app_log(1, 6, "in with %zu\n", std::size_t{host::heldLocks()});
    });
    ETL_BaseHelper::chCriticalSection lock;
    lock.Lock();
    app_log(10, 3, "%s, %d", std::string(5000, 'x').c_str(), 7);
    lock.Unlock();
    phone->setInterruption(nullptr);
    EXPECT_EQ(lines, (Lines{"1/6 in with 1", "10/3 " + std::string(5000, 'x') + ", 7"}));
}

TEST(FileWatch, AChangeACreationAndARemovalAreEachReportedOnce) {
    const test::TempRoot root;
    const auto path = root.path() / "watched";
    root.write("aside", "1");
    std::atomic<int> reports = 0;
    const host::FileWatch watch(path, 1ms, [&] { ++reports; });
    const std::function<void()> changes[] = {[&] { std::filesystem::rename(root.path() / "aside", path); },
                                             [&] { std::filesystem::resize_file(path, 10); },
                                             [&] { std::filesystem::remove(path); }};
    for (int count = 1; count <= 3; ++count) {
        changes[count - 1]();
        for (int i = 0; i < 5000 && reports < count; ++i) {
            std::this_thread::sleep_for(1ms);
        }
        std::this_thread::sleep_for(5ms); // for one too many
        EXPECT_EQ(reports, count);
    }
}

} // namespace
