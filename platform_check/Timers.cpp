// The timer, on the phone's main thread.
#include "platform/MsgQueueHelper.h"
#include "platform_check/Check.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace platform_check {

namespace {

using namespace ETL_MsgQueueHelper;
using Clock = std::chrono::steady_clock;

// Counts expiries. One may be told to take every message before its handler does, to kill the timer that it hears, or
// to withdraw its own messages.
class Listener : public chMsgProcesser {
public:
    ~Listener() override { WithdrawMessages(); }

    using chMsgProcesser::WithdrawMessages;

    int OnTimer(msgObject& message) {
        lastId = message.uMessageId;
        if (toKill != nullptr) {
            toKill->KillTimer();
        }
        if (withdraws) {
            WithdrawMessages();
        }
        ++expiries; // last: the check goes on from here
        return 1;
    }

    int TryThreadMessage(msgObject&) override {
        ++offers;
        return takesAll ? 1 : 0;
    }

    bool start(chThreadTimer& timer, long long period) {
        startedAt = Clock::now();
        return timer.SetTimer(period, nullptr, this, handler);
    }

    long long sinceStart() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - startedAt).count();
    }

    static constexpr auto handler = static_cast<int (chMsgProcesser::*)(msgObject&)>(&Listener::OnTimer);

    std::atomic<int> expiries = 0;
    std::atomic<int> offers = 0;
    std::atomic<unsigned int> lastId = 0;
    chThreadTimer* toKill = nullptr;
    bool withdraws = false;
    bool takesAll = false;
    Clock::time_point startedAt;
};

bool waitFor(Trial& trial, const Listener& listener, int expiries) {
    const bool came = trial.workUntil([&] { return listener.expiries >= expiries; });
    return trial.expect(came, "%d of %d expiries came", listener.expiries.load(), expiries);
}

void timersAreNotEarly(Trial& trial) {
    constexpr int period = 40;
    for (int turn = 0; turn < 3; ++turn) { // a slow machine may hide it
        Listener listener;
        chThreadTimer timer(0);
        trial.expect(listener.start(timer, period), "SetTimer gave false");
        if (waitFor(trial, listener, 1)) {
            const long long taken = listener.sinceStart();
            trial.expect(taken >= period - 1, "a timer of %d ms expired after %lld ms", period, taken);
        }
    }
}

void timersRepeat(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.start(timer, 10);
    if (waitFor(trial, listener, 3)) {
        const long long taken = listener.sinceStart();
        trial.expect(taken >= 29, "the third expiry of a timer of 10 ms came after %lld ms", taken);
        trial.expect(listener.lastId == MSG_THREAD_TIMER, "an expiry came with the message id %#x",
                     listener.lastId.load());
    }
}

void settingStartsAnew(Trial& trial) {
    constexpr int period = 60;
    Listener listener;
    chThreadTimer timer(0);
    listener.start(timer, period);
    trial.work(30);
    listener.start(timer, period);
    if (waitFor(trial, listener, listener.expiries + 1)) {
        const long long taken = listener.sinceStart();
        trial.expect(taken >= period - 1, "a timer of %d ms that was set again expired %lld ms later", period, taken);
    }
}

void shortPeriodsAreOne(Trial& trial) {
    for (const int period : {0, -5}) {
        Listener listener;
        chThreadTimer timer(0);
        trial.expect(listener.start(timer, period), "SetTimer gave false for a period of %d ms", period);
        waitFor(trial, listener, 2);
    }
}

// When the timer is killed, an expiry of it is queued already, unless the phone's main thread works by itself.
void killedTimersAreSilent(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.start(timer, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    timer.KillTimer();
    trial.work(5); // for an expiry that was running
    const int before = trial.phone().work != nullptr ? 0 : listener.expiries.load();
    trial.work(30);
    trial.expect(listener.expiries == before, "%d expiries came after the timer had been killed",
                 listener.expiries.load() - before);
}

void handlersKillTheirTimer(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.toKill = &timer;
    listener.start(timer, 5);
    if (waitFor(trial, listener, 1)) {
        trial.work(30);
        trial.expect(listener.expiries == 1, "%d expiries came after the handler had killed its timer",
                     listener.expiries - 1);
        trial.expect(!timer.IsTimerRuning(), "the timer that its handler killed says that it is running");
    }
}

void runningIsTold(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    trial.expect(!timer.IsTimerRuning(), "a timer that was never set says that it is running");
    listener.start(timer, 5);
    trial.expect(timer.IsTimerRuning(), "a timer that is set says that it is not running");
    waitFor(trial, listener, 1);
    trial.expect(timer.IsTimerRuning(), "a timer that has expired once says that it is not running");
    timer.KillTimer();
    trial.expect(!timer.IsTimerRuning(), "a killed timer says that it is running");
}

void nullsStopTheTimer(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.start(timer, 5);
    trial.expect(!timer.SetTimer(5, nullptr, nullptr, Listener::handler), "it was set for nobody");
    trial.expect(!timer.IsTimerRuning(), "it is running still after it was set for nobody");
    listener.start(timer, 5);
    trial.expect(!timer.SetTimer(5, nullptr, &listener, nullptr), "it was set without a handler");
    trial.expect(!timer.IsTimerRuning(), "it is running still after it was set without a handler");
}

void receiversAreOfferedFirst(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.takesAll = true;
    listener.start(timer, 5);
    trial.expect(trial.workUntil([&] { return listener.offers > 0; }), "no expiry was offered to TryThreadMessage");
    trial.work(10);
    trial.expect(listener.expiries == 0, "the handler was called for a message that TryThreadMessage had taken");
}

// The expiries carry what the listener is told by, so one that comes too late is seen although the listener is gone.
void withdrawnTimersAreSilent(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.start(timer, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    listener.WithdrawMessages();
    const int before = listener.expiries;
    trial.work(30);
    trial.expect(listener.expiries == before, "%d expiries came after the object's messages had been withdrawn",
                 listener.expiries - before);
}

void handlersWithdraw(Trial& trial) {
    Listener listener;
    chThreadTimer timer(0);
    listener.withdraws = true;
    listener.start(timer, 1);
    if (waitFor(trial, listener, 1)) {
        trial.work(20);
        trial.expect(listener.expiries == 1, "%d expiries came after the handler had withdrawn them",
                     listener.expiries - 1);
    }
}

void destroyedTimersAreSilent(Trial& trial) {
    Listener listener;
    auto timer = std::make_unique<chThreadTimer>(0);
    listener.start(*timer, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    timer.reset();
    const int before = listener.expiries;
    trial.work(20);
    trial.expect(listener.expiries == before, "%d expiries came after the timer had been destroyed",
                 listener.expiries - before);
}

constexpr Check checks[] = {
    {"timers are never early", "chThreadTimer::SetTimer", "MsgQueueHelper.h", "the first time llPeriod from now",
     "a page waits 100 ms for LDAP, not less", timersAreNotEarly},
    {"timers repeat", "chThreadTimer::SetTimer", "MsgQueueHelper.h",
     "with a message of id MSG_THREAD_TIMER every llPeriod milliseconds (1 when it is less)",
     "a page that LDAP holds up is sent after all", timersRepeat},
    {"setting a timer starts its period anew", "chThreadTimer::SetTimer", "MsgQueueHelper.h",
     "Setting a running timer starts its period anew.", "the next key's page waits for LDAP in its turn",
     settingStartsAnew},
    {"short periods are one millisecond", "chThreadTimer::SetTimer", "MsgQueueHelper.h",
     "every llPeriod milliseconds (1 when it is less)", "a page that LDAP holds up is sent after all",
     shortPeriodsAreOne},
    {"killed timers never expire", "chThreadTimer::KillTimer", "MsgQueueHelper.h",
     "No expiry begins after this call, unless the timer is set again.",
     "LDAP keeps its place in a page that was ready in time", killedTimersAreSilent},
    {"a handler may kill its timer", "chThreadTimer::KillTimer", "MsgQueueHelper.h",
     "An expiry that is already running is not waited for, so a handler may kill its own timer.",
     "the search kills its timer when it expires", handlersKillTheirTimer},
    {"a timer tells whether it runs", "chThreadTimer::IsTimerRuning", "MsgQueueHelper.h",
     "True from SetTimer until KillTimer.", "a search arms one timer, once", runningIsTold},
    {"nobody to notify stops the timer", "chThreadTimer::SetTimer", "MsgQueueHelper.h",
     "Returns false when pProcesser or pHandler is null or there is no memory; the timer is stopped then.",
     "a timer that could not be set is not waited for", nullsStopTheTimer},
    {"the receiver is offered a message first", "chMsgProcesser::TryThreadMessage", "MsgQueueHelper.h",
     "Offered every message that has a msgObject, such as a timer's expiry, before the handler that it is for. "
     "Non-zero: the message is dealt with.",
     "a phone's own screens may look at every message", receiversAreOfferedFirst},
    {"withdrawal silences timers", "chMsgProcesser::WithdrawMessages", "MsgQueueHelper.h",
     "Removes every message that is queued for this object, timer expiries and answers of asynchronous queries "
     "included",
     "the search ends although its timer is set", withdrawnTimersAreSilent},
    {"a handler may withdraw", "chMsgProcesser::WithdrawMessages", "MsgQueueHelper.h",
     "waits for a message for it that is running on another thread", "a screen may close itself when a page comes",
     handlersWithdraw},
    {"destroying a timer stops it", "chThreadTimer::~chThreadTimer", "MsgQueueHelper.h",
     "Stops the timer and waits for an expiry of it that is running on another thread.",
     "the search ends although its timer is set", destroyedTimersAreSilent},
};

} // namespace

constexpr Group timers = {"timers", checks};

} // namespace platform_check
