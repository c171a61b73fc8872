// The search on real threads that wait for nobody: type, page, read, change the source list, detach and free, stop and
// start, all at the same time. WIDESEEK_STRESS_SECONDS sets how long.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "host/EmbeddedLdap.h"
#include "tests/support/KeyedRows.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <random>
#include <thread>

namespace {

using namespace test;
using Clock = std::chrono::steady_clock;

constexpr const char* localId = "local_directory_search";
constexpr const char* remoteId = "remote_directory_search";
constexpr const char* ldapId = "ldap_search";

// Judges every page that it gets.
class JudgingScreen : public NS_TA::CTaskActionCallbackBase {
public:
    explicit JudgingScreen(host::MessageThread* thread) { SetCallBackThread(thread); }
    ~JudgingScreen() override { WithdrawMessages(); }

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        const WideseekListData page = static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList();
        const std::string wrong = judge(page);
        EXPECT_EQ(wrong, "");
        const std::lock_guard lock(m_mutex);
        m_lastKey = page.strKey;
        m_changed.notify_all();
    }

    // Waits for a page of what was typed.
    bool waitFor(const std::string& typed, std::chrono::milliseconds atMost) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, atMost, [&] { return m_lastKey == typed; });
    }

    void forget() {
        const std::lock_guard lock(m_mutex);
        m_lastKey.reset();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::string> m_lastKey;
};

class LivePhone {
public:
    LivePhone() {
        changeSourceList(sourceListOf({localId, remoteId, ldapId}));
        m_phone->setSource(host::Source::localDirectory, failing);
        m_phone->setSource(host::Source::remoteDirectory, std::make_shared<KeyedSource>('2'));
        m_phone->setRecentCalls(std::make_shared<KeyedCalls>());
        m_phone->setConfig("FeaturesRecentCallEnable", 1);
        host::Kernel& kernel = m_phone->kernel();
        m_phone->setLdap(std::make_shared<host::EmbeddedLdap>(kernel, std::make_unique<KeyedSource>('3'), 1ms));
        screenThread = kernel.addThread("ThreadScreen");
        EXPECT_TRUE(Wideseek_PreInit());
    }

    ~LivePhone() {
        NS_WS::CWideseekController::ReleaseInstance();
        m_phone.reset();
        EXPECT_TRUE(host::Phone::outstanding().empty());
    }

    void changeSourceList(const std::string& xml) {
        m_root.write("config/data/wideseek.xml", xml);
        m_phone->announceConfigChange(52);
    }

    // Threads that need not wait for each other would only fill the queues.
    void catchUp() const {
        while (m_phone->kernel().pending() > 16) {
            std::this_thread::yield();
        }
    }

private:
    TempRoot m_root;
    std::unique_ptr<host::Phone> m_phone = std::make_unique<host::Phone>(host::PhoneOptions{
        .root = m_root.path(), .driver = host::Driver::live, .ldapDelay = {}, .contactFiles = false, .log = {}});

public:
    const std::shared_ptr<KeyedSource> failing = std::make_shared<KeyedSource>('1');
    host::MessageThread* screenThread = nullptr;
};

// One thread's part: a random request at a time.
class Typist {
public:
    explicit Typist(unsigned seed) : m_random(seed) {}

    int below(int bound) { return std::uniform_int_distribution(0, bound - 1)(m_random); }

    // The next key of somebody who types, erases and starts again.
    const std::string& nextKey() {
        if (m_key.size() > 4 || below(4) == 0) {
            m_key.resize(m_key.size() / 2);
        } else {
            m_key += static_cast<char>('1' + below(2));
        }
        return m_key;
    }

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
        const int from = typist.below(4);
        const int count = 1 + typist.below(5);
        {
            const NS_WS::CWideseekAction::CHandOver handOver(*action, &screen);
            action->SetFromIndex(from);
            action->SetSearchCount(count);
            action->SetKey(typedFor(typist.nextKey(), from, count));
        }
        TaskAction_ExecAction(action);
        const WideseekListData page = action->GetResultData();
        EXPECT_TRUE(page.listItem.empty() || judge(page).empty()) << judge(page); // one being made has no rows yet
        live.catchUp();
    }
    action->Detach(&screen);
    Wideseek_DestroySearchAction(action);
}

TEST(Threads, TypePageReadReloadDetachStopAndStartAtOnceWithoutAWrongRow) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    LivePhone live;
    const auto end = Clock::now() + stressTime();
    std::atomic<long> requests = 0;
    const auto request = [&](Typist& typist, JudgingScreen& screen) {
        const int from = typist.below(4);
        const int count = 1 + typist.below(5);
        const std::string typed = typedFor(typist.nextKey(), from, count);
        Wideseek_SearchUnion(typed, from, count, &screen);
        ++requests;
        live.catchUp();
        return typed;
    };
    JudgingScreen typing(live.screenThread);
    JudgingScreen paging(live.screenThread);
    const std::vector<std::function<void(Typist&)>> parts = {
        [&](Typist& typist) { // types, now and then waits for a page as people do, longer than the timer takes
            const std::string typed = request(typist, typing);
            if (typist.below(500) == 0) {
                typing.waitFor(typed, 120ms);
            }
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
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        threads.emplace_back([&, i] {
            Typist typist(seed + static_cast<unsigned>(i));
            while (Clock::now() < end) {
                parts[i](typist);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Wideseek_ResetCallBack(&typing);
    Wideseek_ResetCallBack(&paging);
    RecordProperty("requests", std::to_string(requests));
}

TEST(Threads, ARequestGetsItsPageWhateverTheSourceListDoesMeanwhile) {
    LivePhone live;
    std::atomic<bool> ended = false;
    std::thread changing([&] {
        for (int i = 0; !ended; ++i) {
            live.changeSourceList(sourceListOf(i % 2 == 0 ? std::vector<std::string>{remoteId}
                                                          : std::vector<std::string>{localId, remoteId}));
            live.catchUp();
        }
    });
    JudgingScreen screen(live.screenThread);
    const auto end = Clock::now() + stressTime() / 2;
    for (bool got = true; got && Clock::now() < end;) {
        for (const std::string typed : {"1", "12", "2"}) {
            screen.forget();
            Wideseek_SearchUnion(typed, 0, 0, &screen);
            got = got && screen.waitFor(typed, 10s);
        }
        EXPECT_TRUE(got);
    }
    ended = true;
    changing.join();
    Wideseek_ResetCallBack(&screen);
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
    phone.phone.setInterruption([&](std::string_view function) {
        if (function == "app_log" && !typed) { // the reload begins
            typed = true;
            phone.type("5", screen);
        }
    });
    ETL_MsgQueueHelper::msgObject msg{0x10007, 52};
    EXPECT_NE(NS_WS::CWideseekController::OnMessage(msg), 0);
    phone.phone.setInterruption(nullptr);
    EXPECT_EQ(phone.local->asked.size(), 1U);
    phone.type("51", screen);
    EXPECT_EQ(phone.remote->asked, std::vector<std::string>{"51"});
}

} // namespace
