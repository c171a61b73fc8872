// The search on real threads that wait for nobody: type, page, read, change the source list, detach and free, stop and
// start, all at the same time. WIDESEEK_STRESS_SECONDS sets how long.
//
// Each page can be judged alone: a row's name is "k:" and the key that its source was asked for, its numbers begin with
// that key, and a request's position is part of what is typed: as many blanks in front of the key as its from index, as
// many behind it as its count. So a row of another search, or a key beside another request's position, convicts itself.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "host/ldap/EmbeddedLdap.h"
#include "platform/CommonAPI.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include <unistd.h>

namespace {

using namespace test;
using Clock = std::chrono::steady_clock;

// Offers four contacts for any key.
class KeyedSource : public host::ContactSource {
public:
    explicit KeyedSource(char digit) : m_digit(digit) {} // a digit of its own, so that no two sources offer the same

    std::atomic<int> failIn{0}; // calls until the one that fails, having offered its rows all the same

    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override {
        for (char i = '1'; i <= '4'; ++i) {
            const std::string number = key + m_digit + i;
            hits.PushBack({"k:" + key, number, number + "0", i == '3' ? number : "", ""});
        }
        const bool fails = failIn > 0 && --failIn == 0;
        error = fails ? "its turn to fail" : "";
        return !fails;
    }

private:
    const char m_digit;
};

// The row is of a search for key, or was found for a beginning of key and still matches it.
bool belongsTo(const WideseekItemData& row, const std::string& key) {
    if (key.empty() || !row.strName.starts_with("k:")) {
        return key.empty() && row.strName == "recent";
    }
    const std::string foundFor = row.strName.substr(2);
    // A row matches by its contact's other number too, which is its own with a zero more.
    const std::string fields = row.strNumber + "0 " + CommonUnits_ToKeyString(row.strName);
    return key.starts_with(foundFor) && row.strNumber.starts_with(foundFor) && fields.find(key) != std::string::npos;
}

// What is wrong with the page, or nothing.
std::string judge(const WideseekListData& page) {
    const std::string key = CommonAPI_TrimString(page.strKey, " ", TRIM_TYPE_BOTH_ENDS);
    const auto blanks = [](int count) { return std::string(static_cast<std::size_t>(count), ' '); };
    std::string wrong;
    // A late LDAP answer's page has the key without blanks.
    if (page.strKey != key && page.strKey != blanks(page.iFromIndex) + key + blanks(page.iSearchCount)) {
        wrong += "the position of another request; ";
    }
    const long long count = page.iSearchCount == 0 ? INT_MAX : page.iSearchCount;
    const long long rows = std::clamp<long long>(static_cast<long long>(page.iTotalCount) - page.iFromIndex, 0, count);
    if (rows != static_cast<long long>(page.listItem.size())) {
        wrong += "not the rows that its position and total name; ";
    }
    std::set<std::pair<std::string, std::string>> seen;
    for (const WideseekItemData& row : page.listItem) {
        wrong += belongsTo(row, key) ? "" : "a row of another search; ";
        wrong += seen.emplace(row.strName, row.strNumber).second ? "" : "a row twice; ";
    }
    return wrong.empty() ? wrong
                         : wrong + "key \"" + page.strKey + "\", from " + std::to_string(page.iFromIndex) + ", count " +
                               std::to_string(page.iSearchCount) + ", total " + std::to_string(page.iTotalCount) +
                               ", rows: " + rowsOf(page);
}

// Judges every page that it gets.
class JudgingScreen : public NS_TA::CTaskActionCallbackBase {
public:
    explicit JudgingScreen(host::MessageThread* thread) { SetCallBackThread(thread); }
    ~JudgingScreen() override { WithdrawMessages(); }

    std::atomic<int> pages = 0;

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        EXPECT_EQ(judge(static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList()), "");
        ++pages;
    }
};

struct LivePhone {
    TempRoot root;
    std::optional<host::Phone> phone{
        std::in_place,
        host::PhoneOptions{
            .root = root.path(), .driver = host::Driver::live, .ldapDelay = {}, .contactFiles = false, .log = {}}};
    const std::shared_ptr<KeyedSource> failing = std::make_shared<KeyedSource>('1');
    host::MessageThread* screenThread = phone->kernel().addThread("ThreadScreen");

    LivePhone() {
        changeSourceList(sourceListOf({localId, remoteId, ldapId}));
        phone->setSource(host::Source::localDirectory, failing);
        phone->setSource(host::Source::remoteDirectory, std::make_shared<KeyedSource>('2'));
        phone->setLdap(std::make_shared<host::EmbeddedLdap>(phone->kernel(), std::make_unique<KeyedSource>('3'), 1ms));
        const auto calls = std::make_shared<ScriptedCalls>();
        calls->list = {{"recent", {"0"}}, {"recent", {"1"}}, {"recent", {"2"}}};
        phone->setRecentCalls(calls);
        phone->setConfig("FeaturesRecentCallEnable", 1);
        EXPECT_TRUE(Wideseek_PreInit());
    }

    ~LivePhone() {
        NS_WS::CWideseekController::ReleaseInstance();
        phone.reset();
        EXPECT_TRUE(host::Phone::outstanding().empty());
    }

    void changeSourceList(const std::string& xml) {
        root.write("config/data/wideseek.xml", xml);
        phone->announceConfigChange(ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK);
    }

    // Threads that need not wait for each other would only fill the queues.
    void catchUp(std::size_t left = 16) {
        while (phone->kernel().pending() > left) {
            std::this_thread::yield();
        }
    }
};

// One thread's part: a random request at a time.
class Typist {
public:
    explicit Typist(unsigned start) : m_random(start) {}

    int below(int bound) { return std::uniform_int_distribution(0, bound - 1)(m_random); }

    // The next key and position of somebody who types, erases and starts again.
    void next() {
        if (m_key.size() > 4 || below(4) == 0) {
            m_key.resize(m_key.size() / 2);
        } else {
            m_key += static_cast<char>('1' + below(2));
        }
        from = below(4);
        count = 1 + below(5);
        typed = std::string(static_cast<std::size_t>(from), ' ') + m_key +
                std::string(static_cast<std::size_t>(count), ' ');
    }

    int from = 0;
    int count = 0;
    std::string typed;

private:
    std::mt19937 m_random;
    std::string m_key;
};

std::chrono::milliseconds stressTime() {
    const char* seconds = std::getenv("WIDESEEK_STRESS_SECONDS");
    return seconds != nullptr ? std::chrono::seconds(std::atoi(seconds)) : 1000ms;
}

// Works an action of its own and reads its page while the search makes it.
void readPages(LivePhone& live, Typist& typist) {
    JudgingScreen screen(live.screenThread);
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    for (int i = 0; i < 200; ++i) {
        typist.next();
        NS_WS::CWideseekRequest request(&screen);
        request.SetFromIndex(typist.from);
        request.SetSearchCount(typist.count);
        request.SetKey(typist.typed);
        action->HandOver(std::move(request));
        TaskAction_ExecAction(action);
        const WideseekListData page = action->GetResultData();
        EXPECT_TRUE(page.listItem.empty() || judge(page).empty()) << judge(page); // one being made has no rows yet
        live.catchUp();
    }
    action->Detach(&screen);
    Wideseek_DestroySearchAction(action);
}

TEST(Threads, TypePageReadReloadDetachStopAndStartAtOnceWithoutAWrongRow) {
    const unsigned start = std::random_device()();
    SCOPED_TRACE("start value " + std::to_string(start));
    LivePhone live;
    const auto end = Clock::now() + stressTime();
    std::atomic<long> requests = 0;
    const auto request = [&](Typist& typist, JudgingScreen& screen) {
        typist.next();
        Wideseek_SearchUnion(typist.typed, typist.from, typist.count, &screen);
        ++requests;
        live.catchUp();
    };
    JudgingScreen typing(live.screenThread);
    JudgingScreen paging(live.screenThread);
    const std::vector<std::function<void(Typist&)>> parts = {
        [&](Typist& typist) { // types, now and then pauses as people do, longer than the timer takes
            request(typist, typing);
            std::this_thread::sleep_for(typist.below(500) == 0 ? 120ms : 0ms);
            if (typist.below(50) == 0) {
                Wideseek_ResetKey();
            }
        },
        [&](Typist& typist) { request(typist, paging); },
        [&](Typist& typist) { // a screen that is freed at once
            const auto screen = std::make_unique<JudgingScreen>(live.screenThread);
            request(typist, *screen);
            if (typist.below(2) == 0) {
                std::this_thread::yield();
            }
            Wideseek_ResetCallBack(screen.get());
        },
        [&](Typist& typist) {
            const std::vector<std::string> lists = {sourceListOf({localId, remoteId, ldapId}), sourceListOf({remoteId}),
                                                    sourceListOf({ldapId, localId}), "<root_wideseek><item"};
            live.changeSourceList(lists[static_cast<std::size_t>(typist.below(4))]);
            live.failing->failIn = typist.below(5);
            live.catchUp();
        },
        [&](Typist& typist) { readPages(live, typist); },
        [&](Typist& typist) { // stops and starts, but leaves the others time for some requests in between
            const long until = requests + 1 + typist.below(100);
            while (requests < until && Clock::now() < end) {
                std::this_thread::yield();
            }
            NS_WS::CWideseekController::ReleaseInstance();
            EXPECT_TRUE(Wideseek_PreInit());
        },
    };
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            threads.emplace_back([&, i] {
                Typist typist(start + static_cast<unsigned>(i));
                while (Clock::now() < end) {
                    parts[i](typist);
                }
            });
        }
    }
    live.changeSourceList(sourceListOf({remoteId}));
    live.catchUp(0);
    const int before = typing.pages;
    Wideseek_SearchUnion("1", 0, 0, &typing);
    live.catchUp(0);
    EXPECT_EQ(typing.pages, before + 1) << "after all that";
    Wideseek_ResetCallBack(&typing);
    Wideseek_ResetCallBack(&paging);
    RecordProperty("requests", std::to_string(requests));
}

TEST(Threads, AStopHalfwayThroughKeepsEveryPageAwayFromDetachedAndLateScreens) {
    SteppedPhone phone({ldapId, localId});
    phone.local->contacts = {{"Ann", {"51"}}};
    std::optional<NS_WS::CWideseekController::CUse> use; // holds the stop up where the controller is out of reach
    std::thread stopping;
    Screen screen;
    Screen late;
    phone.local->meanwhile = [&] {
        ASSERT_FALSE(stopping.joinable()) << "asked again";
        use.emplace(false);
        stopping = std::thread(NS_WS::CWideseekController::ReleaseInstance);
        NS_WS::WideseekCfgListData ignored;
        while (NS_WS::CWideseekController::LendEnableCfgList(&ignored)) {
            std::this_thread::yield();
        }
        Wideseek_ResetCallBack(&screen);
        (*use)->SearchUnion("5", 0, 1, &late);
    };
    phone.type("5", screen);
    phone.answerLdap({{"Bob", {"52"}}});
    phone.run(1s);
    use.reset();
    stopping.join();
    EXPECT_EQ(screen.count() + late.count(), 0U);
}

TEST(Threads, ASearchThatBeginsWhileTheSourceListIsReadIsNoResultOfTheNewList) {
    SteppedPhone phone({localId});
    phone.setSourceList(sourceListOf({remoteId}));
    Screen screen;
    bool typed = false;
    phone.phone.setInterruption([&](host::PlatformCall call) {
        if (call.function == host::PlatformFunction::log && !typed) { // the reload begins
            typed = true;
            phone.type("5", screen);
        }
    });
    ETL_MsgQueueHelper::msgObject msg{ETL_MsgQueueHelper::MSG_CONFIG_CHANGED, ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK};
    EXPECT_NE(NS_WS::CWideseekController::OnMessage(msg), 0);
    phone.phone.setInterruption(nullptr);
    EXPECT_EQ(phone.local->asked.size(), 1U);
    phone.type("51", screen);
    EXPECT_EQ(phone.remote->asked, std::vector<std::string>{"51"});
}

// Waits until this thread of the process sleeps and goes on doing so.
void waitUntilAsleep(const std::atomic<pid_t>& thread) {
    for (int asleep = 0; asleep < 100; std::this_thread::yield()) {
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string text;
        std::getline(file, text);
        const std::size_t name = text.rfind(')');
        asleep = name != std::string::npos && text.compare(name, 3, ") S") == 0 ? asleep + 1 : 0;
    }
}

TEST(Threads, AnExpiryThatWaitsWhileANewerSearchArmsTheTimerDoesNothing) {
    SteppedPhone phone({localId, ldapId});
    Screen screen;
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    const auto type = [&](const std::string& key) {
        NS_WS::CWideseekRequest request(&screen);
        request.SetKey(key);
        action->HandOver(std::move(request));
        action->Exec();
    };
    type("5"); // arms the timer, since LDAP is asked
    std::atomic<pid_t> waiting{0};
    std::thread expiry;
    phone.local->meanwhile = [&] {
        expiry = std::thread([&] {
            ETL_MsgQueueHelper::msgObject message{ETL_MsgQueueHelper::MSG_THREAD_TIMER};
            waiting = gettid();
            action->OnMessage(message);
        });
        waitUntilAsleep(waiting);
    };
    type("6");
    expiry.join();
    phone.run();
    EXPECT_EQ(screen.count(), 0U) << "a page before LDAP has had its time";
    phone.run(100ms);
    EXPECT_EQ(screen.count(), 1U);
    Wideseek_DestroySearchAction(action);
}

TEST(Threads, ThePhoneMayCallTheSearchWhileItRegistersTheHandler) {
    SteppedPhone phone({localId});
    NS_WS::CWideseekController::ReleaseInstance();
    bool registered = false;
    phone.phone.setInterruption([&](host::PlatformCall call) {
        if (call.function == host::PlatformFunction::registerHandler) {
            registered = true;
            std::thread(Wideseek_ResetKey).join(); // for ever, if a lock of the search were held
        }
    });
    Wideseek_PreInit();
    phone.phone.setInterruption(nullptr);
    EXPECT_TRUE(registered);
}

} // namespace
