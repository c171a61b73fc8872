// The phone's messaging: reference counts, timers, task actions, memory, log, configuration messages.

#include "host/FileWatch.h"
#include "host/Phone.h"
#include "platform/AppLog.h"
#include "platform/BaseHelper.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "platform/SystemFile.h"
#include "platform/TrackedMemory.h"
#include "tests/support/Files.h"
#include "tests/support/Recorder.h"
#include "tests/support/SteppedPhone.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using ETL_MsgQueueHelper::chMsgProcesser;
using ETL_MsgQueueHelper::chThreadTimer;
using ETL_MsgQueueHelper::msgObject;
using host::Driver;
using host::Phone;

std::size_t outstandingBlocks() {
    std::size_t count = 0;
    for (const auto& site : Phone::outstanding()) {
        count += site.blocks;
    }
    return count;
}

// A task action that is a receiver as well, so that the counted part is not where its block begins.
class Action : public NS_TA::CTaskActionCallbackBase, public NS_TA::CTaskAction {
public:
    static Action* make(std::function<void()> exec = [] {}) {
        auto* action = new ("tests/host_test", 1) Action;
        action->SetCreatFlag(true);
        action->m_exec = std::move(exec);
        return action;
    }
    ~Action() override {
        app_log(1, 6, "gone\n");
        m_timer.KillTimer();
        WithdrawMessages();
    }
    bool Exec() override {
        m_exec();
        return true;
    }

private:
    std::function<void()> m_exec;
    chThreadTimer m_timer{0};
};

class Receiver : public NS_TA::CTaskActionCallbackBase {
public:
    ~Receiver() override { WithdrawMessages(); }
    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override { onAction(*pAction); }
    int TryThreadMessage(msgObject& msg) override { return takesAll && ++offered > 0 && msg.uMessageId == 0x8113; }
    int onTimer(msgObject& msg) {
        EXPECT_EQ(msg.uMessageId, 0x8113U);
        ++expiries;
        onExpiry();
        return 0;
    }
    bool set(chThreadTimer& timer, long long period) {
        return timer.SetTimer(period, nullptr, this,
                              static_cast<int (chMsgProcesser::*)(msgObject&)>(&Receiver::onTimer));
    }

    std::function<void(NS_TA::CTaskAction&)> onAction = [](auto&) {};
    std::function<void()> onExpiry = [] {};
    std::atomic<int> expiries = 0;
    std::atomic<int> offered = 0;
    bool takesAll = false;
};

void* threadOf(const char* name) {
    return ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(name);
}

class SteppedHost : public testing::Test {
protected:
    test::TempRoot root;
    std::vector<std::string> lines;
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
        EXPECT_EQ(outstandingBlocks(), 0U);
    }
};

TEST(HostWithoutAPhone, EveryPlatformFunctionAnswersLikeAPhoneThatHasNothing) {
    WideseekItemListData query;
    OxVector<GeneralDirItemData> calls;
    Receiver receiver;
    chThreadTimer timer(0);
    Action* action = Action::make();
    action->AddRef();
    EXPECT_FALSE(Directory_LocalDirWideseek(&query) || Directory_LocalLogWideseek(&query) ||
                 RemoteDir_Wideseek(&query) || BSFTDir_Wideseek(&query));
    EXPECT_LT(Directory_SearchCallLogRecentOutCall(calls, 0, 1), 0);
    EXPECT_EQ(Ldap_SearchAsync("a", 0, 1, &receiver, nullptr), 0);
    EXPECT_EQ(CPresenceContactManager::GetInstance(), nullptr);
    EXPECT_EQ(threadOf("ThreadMain"), nullptr);
    EXPECT_EQ(configParser_GetConfigInt("FeaturesRecentCallEnable"), -1);
    EXPECT_EQ(SystemFile_GetRealPath("/config/x"), "/config/x");
    EXPECT_FALSE(receiver.set(timer, 1) || timer.IsTimerRuning());
    EXPECT_EQ(TaskAction_ExecAction(action), 0);
    receiver.SendMessageToCallingThread(action);
    EtlMsgHandler_RegisterMsgHandle(1, 2, nullptr);
    app_log(1, 1, "nobody reads this\n");
    EXPECT_EQ(outstandingBlocks(), 1U);
    action->Release();
    EXPECT_EQ(outstandingBlocks(), 0U);
}

TEST_F(SteppedHost, TrackedMemoryNamesWhatIsOutstandingAndFailsTheNthAllocation) {
    Phone::failAllocation(2);
    void* first = operator new(8, "b", 2);
    EXPECT_EQ(operator new(8, "b", 2), nullptr);
    void* third = operator new(0, "a", 9);
    void* fourth = operator new(8, "b", 2);
    ASSERT_TRUE(first && third && fourth);
    std::string sites;
    for (const auto& site : Phone::outstanding()) {
        sites += site.file + ":" + std::to_string(site.line) + "x" + std::to_string(site.blocks) + " ";
    }
    EXPECT_EQ(sites, "a:9x1 b:2x2 ");
    for (void* block : {first, third, fourth, static_cast<void*>(nullptr)}) {
        operator delete(block, "c", 1);
    }
    Phone::failAllocation(1);
    Phone::failAllocation(0);
    void* block = operator new(1, "a", 1);
    ASSERT_NE(block, nullptr);
    operator delete(block, "c", 1);
    void* stray = root.path().string().size() > 1 ? this : nullptr;
    EXPECT_DEATH(operator delete(stray, "c", 7), "c:7: gives back the block");
}

TEST_F(SteppedHost, TheLastReleaseDestroysACreatedActionOnceAndNothingElse) {
    Action* action = Action::make();
    action->Release(); // never below zero
    action->AddRef();
    action->AddRef();
    action->Release();
    EXPECT_TRUE(lines.empty());
    action->Release();
    EXPECT_EQ(lines, (std::vector<std::string>{"1/6 gone"}));
    {
        Receiver keeper;
        NS_TA::CTaskAction onTheStack;
        TaskAction_ExecAction(&onTheStack);
        phone->kernel().advance(0ms);
        keeper.SendMessageToCallingThread(&onTheStack);
        phone->kernel().advance(0ms);
    }
}

TEST_F(SteppedHost, ActionsRunOnTheSearchThreadAndCallbacksOnTheReceivers) {
    Receiver screen;
    Receiver other;
    other.SetCallBackThread(threadOf("ThreadMessage"));
    std::string seen;
    const auto on = [&](const char* what, const char* thread) {
        seen += std::string(what) + (phone->kernel().currentThread() == threadOf(thread) ? " " : " elsewhere ");
    };
    Action* action = Action::make([&] { on("exec", "ThreadLocalContactSearch"); });
    screen.onAction = [&](auto& received) {
        EXPECT_EQ(&received, action);
        on("screen", "ThreadMain");
    };
    other.onAction = [&](auto&) { on("other", "ThreadMessage"); };
    EXPECT_EQ(TaskAction_ExecAction(nullptr), 0);
    screen.SendMessageToCallingThread(nullptr);
    EXPECT_NE(TaskAction_ExecAction(action), 0);
    EXPECT_NE(TaskAction_ExecAction(action), 0);
    screen.SendMessageToCallingThread(action);
    other.SendMessageToCallingThread(action);
    EXPECT_EQ(seen, "") << "nothing runs from within a call";
    phone->kernel().advance(0ms);
    EXPECT_EQ(seen, "exec exec screen other ");
    EXPECT_EQ(outstandingBlocks(), 0U);
}

TEST_F(SteppedHost, ATimerExpiresAtItsPeriodUntilItIsKilled) {
    Receiver receiver;
    chThreadTimer timer(0);
    ASSERT_TRUE(receiver.set(timer, 100));
    EXPECT_TRUE(timer.IsTimerRuning());
    phone->kernel().advance(99ms);
    EXPECT_EQ(receiver.expiries, 0);
    phone->kernel().advance(1ms);
    EXPECT_EQ(receiver.expiries, 1);
    phone->kernel().advance(250ms);
    EXPECT_EQ(receiver.expiries, 3);
    ASSERT_TRUE(receiver.set(timer, 100)) << "the period begins anew";
    phone->kernel().advance(99ms);
    EXPECT_EQ(receiver.expiries, 3);
    receiver.takesAll = true;
    phone->kernel().advance(1ms);
    EXPECT_EQ(receiver.offered, 1);
    EXPECT_EQ(receiver.expiries, 3) << "what TryThreadMessage deals with does not reach the handler";
    timer.KillTimer();
    EXPECT_FALSE(timer.IsTimerRuning());
    phone->kernel().advance(1h);
    EXPECT_EQ(receiver.offered, 1);
    EXPECT_EQ(phone->kernel().pending(), 0U);
    EXPECT_FALSE(timer.SetTimer(1, nullptr, nullptr, &chMsgProcesser::TryThreadMessage));
    EXPECT_FALSE(timer.SetTimer(1, nullptr, &receiver, nullptr));
}

TEST_F(SteppedHost, AHandlerMayKillSetAndDestroyItsTimer) {
    Receiver receiver;
    auto timer = std::make_unique<chThreadTimer>(0);
    receiver.set(*timer, 10);
    receiver.onExpiry = [&] {
        timer->KillTimer();
        receiver.set(*timer, 30);
        receiver.onExpiry = [&] { timer.reset(); };
    };
    phone->kernel().advance(10ms + 29ms);
    EXPECT_EQ(receiver.expiries, 1);
    phone->kernel().advance(1h);
    EXPECT_EQ(receiver.expiries, 2);
    EXPECT_EQ(phone->kernel().pending(), 0U);
}

TEST_F(SteppedHost, ATimerAndItsReceiverMayGoInAnyOrder) {
    for (const bool timerFirst : {true, false}) {
        auto receiver = std::make_unique<Receiver>();
        auto timer = std::make_unique<chThreadTimer>(0);
        receiver->set(*timer, 10);
        timerFirst ? timer.reset() : receiver.reset();
        EXPECT_EQ(phone->kernel().pending(), 0U);
        phone->kernel().advance(20ms);
    }
}

TEST_F(SteppedHost, GoingDownGivesBackEverythingThatIsQueued) {
    Receiver receiver;
    chThreadTimer timer(0);
    receiver.set(timer, 10);
    int execs = 0;
    receiver.onAction = [&](auto&) { ++execs; };
    TaskAction_ExecAction(Action::make([&] { ++execs; }));
    receiver.SendMessageToCallingThread(Action::make());
    EXPECT_EQ(outstandingBlocks(), 2U);
    phone.reset();
    EXPECT_EQ(outstandingBlocks(), 0U);
    EXPECT_EQ(execs, 0);
    EXPECT_EQ(lines, (std::vector<std::string>{"1/6 gone", "1/6 gone"})) << "the log works to the last";
    phone = make();
    phone->kernel().advance(1s);
    EXPECT_EQ(receiver.expiries, 0);
    receiver.set(timer, 10);
    phone->kernel().advance(10ms);
    EXPECT_EQ(receiver.expiries, 1) << "objects that outlive a phone work with the next";
}

int handled[2] = {};
int countFirst(msgObject& msg) {
    handled[0] += msg.uMessageId == 0x10007 && msg.llParam1 == 52 ? 1 : 100;
    return 0;
}
int countSecond(msgObject&) {
    return ++handled[1];
}

TEST_F(SteppedHost, AConfigurationChangeReachesEachRegisteredHandlerOnce) {
    handled[0] = handled[1] = 0;
    EtlMsgHandler_RegisterMsgHandle(0x10007, 0x10007, countFirst);
    EtlMsgHandler_RegisterMsgHandle(0x10007, 0x10007, countFirst);
    EtlMsgHandler_RegisterMsgHandle(0x10000, 0x10010, countFirst);
    EtlMsgHandler_RegisterMsgHandle(0x10000, 0x10006, countSecond);
    EtlMsgHandler_RegisterMsgHandle(0x10008, 0x20000, countSecond);
    phone->announceConfigChange(52);
    EXPECT_EQ(handled[0], 0) << "never from within the call";
    ASSERT_EQ(phone->kernel().ready().size(), 1U);
    EXPECT_EQ(phone->kernel().ready()[0].thread, "ThreadMessage");
    phone->kernel().advance(0ms);
    EXPECT_EQ(handled[0], 1);
    EXPECT_EQ(handled[1], 0);
}

TEST_F(SteppedHost, ConfigurationValuesAreIntegersOfAnySectionAsTheFileStands) {
    const auto value = [](const char* key) { return configParser_GetConfigInt(key); };
    EXPECT_EQ(value("A"), -1) << "no file";
    EXPECT_TRUE(phone->problems().empty()) << "which is no problem";
    test::writeFile(
        root.path() / "config/data/phone.ini",
        "A = 1\n[features]\nB=-7 ; why\nC = 12x\nD =\nE=99999999999\nF=+3\n[other]\nB = -7\nG = 1\n[third]\n"
        "G = 2\nI = 4\n  2\nnonsense\nI = 43\nJ = " +
            std::string(300, '1') + "\nK = 5");
    const struct {
        const char* key;
        int value;
    } cases[] = {{"A", 1},  {"B", -7}, {"C", -1}, {"D", -1}, {"E", -1}, {"F", 3},
                 {"G", -1}, {"H", -1}, {"I", 42}, {"J", -1}, {"K", 5}};
    for (const auto& [key, expected] : cases) {
        EXPECT_EQ(value(key), expected) << key;
    }
    const char* const reasons[] = {"phone.ini:16: sets I again", "phone.ini:17: is skipped: it is longer than 199",
                                   "phone.ini:15: is skipped; write", "G has different values in [other] and [third]"};
    const auto problems = phone->problems();
    ASSERT_EQ(problems.size(), std::size(reasons));
    for (std::size_t i = 0; i < problems.size(); ++i) {
        EXPECT_NE(problems[i].find(reasons[i]), std::string::npos) << problems[i];
    }
    phone->setConfig("A", 5);
    EXPECT_EQ(value("A"), 5);
    test::writeFile(root.path() / "config/data/phone.ini", "B = 8\n");
    EXPECT_EQ(value("B"), 8);
    EXPECT_EQ(value("F"), -1);
    EXPECT_EQ(SystemFile_GetRealPath("/config/x.xml"), (root.path() / "config/x.xml").string());
}

TEST_F(SteppedHost, ALogLineOfAnyLengthArrivesWithoutItsLineFeed) {
    app_log(10, 6, "key = %s, %d\n", std::string(5000, 'x').c_str(), 7);
    app_log(10, 3, "no line feed");
    EXPECT_EQ(lines, (std::vector<std::string>{"10/6 key = " + std::string(5000, 'x') + ", 7", "10/3 no line feed"}));
}

TEST_F(SteppedHost, AnInterruptionComesInAtEveryCallAndIsNotInterrupted) {
    std::string seen;
    phone->setSource(host::Source::callLog, std::make_shared<test::ScriptedSource>());
    phone->setInterruption([&](std::string_view function) {
        seen += std::string(function) + std::to_string(Phone::heldLocks()) + " ";
        app_log(1, 6, "inside\n");
    });
    ETL_BaseHelper::chCriticalSection outer;
    ETL_BaseHelper::chCriticalSection inner;
    outer.Lock();
    inner.Lock();
    app_log(1, 6, "locked\n");
    inner.Unlock();
    outer.Unlock();
    WideseekItemListData query;
    EXPECT_TRUE(Directory_LocalLogWideseek(&query));
    phone->setInterruption(nullptr);
    app_log(1, 6, "none\n");
    EXPECT_EQ(seen, "app_log2 Directory_LocalLogWideseek0 Directory_LocalLogWideseek:answered0 ");
}

TEST_F(SteppedHost, ASearchIsTracedWithWhatTheSourceOfferedAndWhyItFailed) {
    const auto source = std::make_shared<test::ScriptedSource>();
    source->contacts = {{"Ann", {"51", "52"}}, {"Bob", {"53"}}};
    phone->setSource(host::Source::localDirectory, source);
    test::Recorder recorder;
    phone->setTrace(&recorder);
    WideseekItemListData query;
    query.strKey = "5";
    EXPECT_TRUE(Directory_LocalDirWideseek(&query));
    EXPECT_TRUE(Directory_LocalDirWideseek(&query)) << "counts what this query appended only";
    EXPECT_FALSE(BSFTDir_Wideseek(&query));
    EXPECT_FALSE(BSFTDir_Wideseek(nullptr));
    EXPECT_EQ(recorder.seen, "3|local directory|5|0/0\n4|local directory|5|2/3\n"
                             "3|local directory|5|0/0\n4|local directory|5|2/3\n"
                             "3|BroadSoft directory|5|0/0\n4|BroadSoft directory|5|0/0|the phone has no such source\n");
    phone->setTrace(nullptr);
}

TEST(FileWatch, AChangeACreationAndARemovalAreEachReported) {
    const test::TempRoot root;
    const auto path = root.path() / "watched";
    std::atomic<int> reports = 0;
    const host::FileWatch watch(path, 1ms, [&] { ++reports; });
    const auto awaits = [&](int count) {
        for (int i = 0; i < 5000 && reports < count; ++i) {
            std::this_thread::sleep_for(1ms);
        }
        return reports == count;
    };
    test::writeFile(root.path() / "aside", "1");
    std::filesystem::rename(root.path() / "aside", path); // there whole, at once
    EXPECT_TRUE(awaits(1));
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(reports, 1) << "once";
    std::filesystem::resize_file(path, 10);
    EXPECT_TRUE(awaits(2));
    std::filesystem::remove(path);
    EXPECT_TRUE(awaits(3));
}

TEST(LivePhone, RequestsRunOnTheSearchThreadAndPagesArriveWhereTheyAreServed) {
    Receiver receiver; // outlives the phone, so that it may go down in the middle
    Phone phone({.root = {}, .driver = Driver::live, .ldapDelay = {}, .contactFiles = false, .log = {}});
    const auto caller = std::this_thread::get_id();
    int received = 0;
    receiver.onAction = [&](auto&) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        ++received;
    };
    for (int i = 0; i < 50; ++i) {
        TaskAction_ExecAction(Action::make([&] {
            EXPECT_EQ(phone.kernel().currentThread(), threadOf("ThreadLocalContactSearch"));
            receiver.SendMessageToCallingThread(Action::make());
        }));
    }
    EXPECT_TRUE(phone.kernel().serveMain([&] { return received == 50 && phone.isIdle(); }, 10s));
    EXPECT_EQ(outstandingBlocks(), 0U);
    TaskAction_ExecAction(Action::make([&] { receiver.SendMessageToCallingThread(Action::make()); }));
}

TEST(LivePhone, AKilledTimerAndAGoneReceiverStaySilent) {
    Phone phone({.root = {}, .driver = Driver::live, .ldapDelay = {}, .contactFiles = false, .log = {}});
    std::atomic<bool> silent = false;
    for (int i = 0; i < 60; ++i) {
        silent = false;
        auto receiver = std::make_unique<Receiver>();
        receiver->SetCallBackThread(threadOf("ThreadLocalContactSearch"));
        chThreadTimer timer(0);
        receiver->onExpiry = [&] { EXPECT_FALSE(silent); };
        receiver->set(timer, 1);
        std::this_thread::sleep_for(std::chrono::microseconds(900 + 10 * i));
        if (i % 2 == 0) {
            timer.KillTimer();
            const auto search = phone.kernel().findThread(host::Kernel::searchThread);
            std::atomic<bool> reached = false; // a running expiry has ended when the next message begins
            phone.kernel().post(search, {}, 0ms, "", [&] { reached = true; });
            while (!reached) {
                std::this_thread::yield();
            }
        } else {
            receiver.reset();
        }
        silent = true;
        std::this_thread::sleep_for(2ms);
    }
}

} // namespace
