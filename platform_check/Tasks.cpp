// Reference counts, the queue of the search thread, and messages from thread to thread.
#include "platform/Ldap.h"
#include "platform/TaskAction.h"
#include "platform/TrackedMemory.h"
#include "platform_check/Probes.h"

#include <chrono>
#include <string>
#include <vector>

namespace platform_check {

namespace {

using ETL_MsgQueueHelper::chThreadTimer;
using NS_TA::CTaskAction;

// ---- references ----

void lastReleaseDestroys(Trial& trial) {
    const auto life = std::make_shared<ActionLife>();
    CTaskAction* action = makeAction(trial, life);
    if (action == nullptr) {
        return;
    }
    action->AddRef();
    action->Release();
    trial.expect(!life->destroyed, "an action with one reference left was destroyed");
    if (!life->destroyed) {
        action->Release();
        trial.expect(life->destroyed, "an action that was marked as created on the heap outlived its last reference");
    }
}

void ownedObjectsStay(Trial& trial) {
    const auto life = std::make_shared<ActionLife>();
    ProbeAction action(life);
    action.AddRef();
    action.Release();
    trial.expect(!life->destroyed, "an object that belongs to someone else was destroyed by the last Release");
}

// The search itself: two bases, of which the counted one comes second.
class TwoBases : public NS_TA::CTaskActionCallbackBase, public CTaskAction {
public:
    explicit TwoBases(bool& destroyed) : m_destroyed(destroyed) {}
    ~TwoBases() override { m_destroyed = true; }

private:
    bool& m_destroyed;
};

void wholeObjectsAreFreed(Trial& trial) {
    for (int turn = 0; turn < 4; ++turn) { // an allocator may notice a wrong address late
        bool destroyed = false;
        auto* object = new (__FILE__, __LINE__) TwoBases(destroyed);
        trial.expect(object != nullptr, "there is no memory for an object");
        if (object == nullptr) {
            return;
        }
        CTaskAction* action = object;
        action->SetCreatFlag(true);
        action->AddRef();
        action->Release();
        trial.expect(destroyed, "an object with two bases outlived its last reference");
    }
}

void basesAreAsTheyWereMade(Trial& trial) {
    CTaskAction action;
    trial.expect(action.GetResultCode() == 0, "a new action has the result code %d", action.GetResultCode());
    trial.expect(action.Exec(), "the base's Exec gave false");
    NS_TA::CTaskActionCallbackBase receiver;
    receiver.OnTaskActionCallback(&action);
}

// ---- the queue of the search thread ----

void queuedActionsAreExecuted(Trial& trial) {
    const auto life = std::make_shared<ActionLife>();
    CTaskAction* action = makeAction(trial, life);
    if (action == nullptr) {
        return;
    }
    Busy busy(trial);
    for (int turn = 0; turn < 2; ++turn) {
        trial.expect(TaskAction_ExecAction(action) != 0, "TaskAction_ExecAction gave zero for an action");
    }
    trial.expect(life->executions == 0, "Exec ran within TaskAction_ExecAction");
    action->Release();
    trial.expect(!life->destroyed, "a queued action was destroyed with its maker's reference");
    if (life->destroyed) {
        return;
    }
    busy.end();
    trial.workUntil([&] { return life->executions >= 2 && life->destroyed; });
    trial.expect(life->executions == 2, "an action that was queued twice was executed %d times",
                 life->executions.load());
}

void executedActionsAreLetGo(Trial& trial) {
    const auto life = std::make_shared<ActionLife>();
    std::atomic<bool> destroyedWithin = false;
    life->work = [&destroyedWithin, own = life.get()] { destroyedWithin = own->destroyed.load(); };
    CTaskAction* action = makeAction(trial, life);
    if (action == nullptr) {
        return;
    }
    TaskAction_ExecAction(action);
    action->Release();
    trial.expect(trial.workUntil([&] { return life->destroyed.load(); }),
                 "an action without other references is there still after it was executed");
    trial.expect(!destroyedWithin, "an action was destroyed before its Exec had returned");
}

void nullIsNotTaken(Trial& trial) {
    trial.expect(TaskAction_ExecAction(nullptr) == 0, "TaskAction_ExecAction took a null action");
}

// ---- messages ----

// A receiver on the search thread.
class SearchReceiver : public Receiver {
public:
    SearchReceiver() { SetCallBackThread(searchThread()); }
    ~SearchReceiver() override { WithdrawMessages(); }

    // Posts an action of its own that nobody else refers to.
    std::shared_ptr<ActionLife> post(Trial& trial) {
        auto life = std::make_shared<ActionLife>();
        if (CTaskAction* action = makeAction(trial, life)) {
            SendMessageToCallingThread(action);
            action->Release();
        }
        return life;
    }
};

void messagesComeOnTheirThread(Trial& trial) {
    std::atomic<std::thread::id> executedOn;
    std::atomic<std::thread::id> receivedOn;
    SearchReceiver receiver;
    receiver.received = [&](CTaskAction*) { receivedOn = std::this_thread::get_id(); };
    execute(trial, [&] { executedOn = std::this_thread::get_id(); });
    receiver.post(trial);
    if (trial.expect(trial.workUntil([&] { return receiver.count == 1; }), "a posted action did not arrive")) {
        trial.expect(executedOn.load() == receivedOn.load(),
                     "an object of the search thread got its message on another thread than the one that runs Exec");
    }
}

void mainIsTheDefault(Trial& trial) {
    if (trial.phone().work == nullptr) {
        trial.skip("Phone::work is not set, so it is not known which thread is the main one");
        return;
    }
    std::atomic<std::thread::id> receivedOn;
    SearchReceiver receiver;
    receiver.SetCallBackThread(nullptr);
    receiver.received = [&](CTaskAction*) { receivedOn = std::this_thread::get_id(); };
    receiver.post(trial);
    if (trial.expect(trial.workUntil([&] { return receiver.count == 1; }), "a posted action did not arrive")) {
        trial.expect(receivedOn.load() == std::this_thread::get_id(), "it arrived on another thread");
    }
}

// Everything that is for one thread, from two senders: actions to execute and messages.
void orderIsKept(Trial& trial) {
    constexpr int posted = 60;
    std::vector<int> order;
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    std::atomic<int> done = 0;
    const auto note = [&](int number) {
        overlaps += ++inside > 1 ? 1 : 0;
        order.push_back(number);
        std::this_thread::yield();
        --inside;
        ++done;
    };
    SearchReceiver receiver;
    receiver.received = [&](CTaskAction* action) { note(action->GetTypeId()); };
    Busy busy(trial);
    for (int number = 0; number < posted; ++number) {
        if (number % 3 == 0) {
            execute(trial, [&note, number] { note(number); });
        } else if (CTaskAction* action = makeAction(trial, std::make_shared<ActionLife>())) {
            action->SetTypeId(number);
            receiver.SendMessageToCallingThread(action);
            action->Release();
        }
    }
    busy.end();
    if (!trial.expect(trial.workUntil([&] { return done == posted; }), "%d of %d messages arrived", done.load(),
                      posted)) {
        return;
    }
    trial.expect(overlaps == 0, "two messages of one thread were worked at the same time");
    for (int place = 0; place < posted; ++place) {
        if (!trial.expect(order[static_cast<std::size_t>(place)] == place, "message %d came in the place of message %d",
                          order[static_cast<std::size_t>(place)], place)) {
            return;
        }
    }
}

void waitFor(const std::atomic<bool>& posted) {
    const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!posted && std::chrono::steady_clock::now() < latest) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void postingCallsNothingBack(Trial& trial) {
    std::atomic<bool> posted = false;
    std::atomic<bool> within = false;
    SearchReceiver receiver;
    receiver.received = [&](CTaskAction*) { within = !posted; };
    Busy busy(trial);
    receiver.post(trial);
    posted = true;
    busy.end();
    if (trial.expect(trial.workUntil([&] { return receiver.count == 1; }), "a posted action did not arrive")) {
        trial.expect(!within, "the receiver was called before SendMessageToCallingThread had returned");
    }
}

// A receiver is at work until the next message for it has been posted; it gives up after a while.
void postingDoesNotWait(Trial& trial) {
    if (!hasSearchThread(trial)) {
        return;
    }
    std::atomic<bool> atWork = false;
    std::atomic<bool> posted = false;
    std::atomic<bool> waited = false;
    SearchReceiver receiver;
    receiver.received = [&](CTaskAction*) {
        if (!atWork.exchange(true)) {
            waitFor(posted);
            waited = !posted;
        }
    };
    receiver.post(trial);
    trial.expect(trial.workUntil([&] { return atWork.load(); }), "a posted action did not arrive");
    receiver.post(trial);
    posted = true;
    trial.workUntil([&] { return receiver.count == 2; });
    trial.expect(!waited, "posting waited until the receiver's handler had returned");
}

void postedPagesAreHeld(Trial& trial) {
    SearchReceiver receiver;
    std::atomic<bool> destroyedWithin = false;
    std::shared_ptr<ActionLife> life;
    receiver.received = [&](CTaskAction*) { destroyedWithin = life->destroyed.load(); };
    Busy busy(trial);
    life = receiver.post(trial);
    if (!trial.expect(!life->destroyed, "a posted action was destroyed with its sender's reference")) {
        receiver.WithdrawMessages();
        return;
    }
    busy.end();
    trial.expect(trial.workUntil([&] { return life->destroyed.load(); }),
                 receiver.count == 0 ? "a posted action did not arrive"
                                     : "an action without other references is there still after it was delivered");
    trial.expect(!destroyedWithin, "an action was destroyed before OnTaskActionCallback had returned");
}

void nullIsNotPosted(Trial& trial) {
    SearchReceiver receiver;
    receiver.SendMessageToCallingThread(nullptr);
    receiver.post(trial);
    trial.workUntil([&] { return receiver.count > 0; });
    trial.work(5);
    trial.expect(receiver.count == 1, "%d messages came where one was posted, and a null", receiver.count.load());
}

// ---- withdrawal ----

void withdrawnMessagesAreGone(Trial& trial) {
    SearchReceiver receiver;
    chThreadTimer timer(0);
    Busy busy(trial);
    const auto life = receiver.post(trial);
    timer.SetTimer(1, nullptr, &receiver, Receiver::timerHandler);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    receiver.WithdrawMessages();
    trial.expect(life->destroyed, "a withdrawn message holds its reference still");
    receiver.post(trial);
    busy.end();
    trial.work(10);
    trial.expect(receiver.count == 0, "%d messages came after they had been withdrawn", receiver.count.load());
}

// A handler on the search thread that takes its time; ends once the check has begun to wait for it.
class SlowReceiver : public SearchReceiver {
public:
    SlowReceiver() {
        received = [this](CTaskAction*) {
            running = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(40));
            ended = true;
        };
    }

    ~SlowReceiver() override { WithdrawMessages(); }

    std::atomic<bool> running = false;
    std::atomic<bool> ended = false;
};

void withdrawalWaits(Trial& trial) {
    if (!hasSearchThread(trial)) {
        return;
    }
    for (int turn = 0; turn < 3; ++turn) { // a slow machine may let the handler end by itself
        SlowReceiver receiver;
        receiver.post(trial);
        trial.expect(trial.workUntil([&] { return receiver.running.load(); }), "a posted action did not arrive");
        receiver.WithdrawMessages();
        trial.expect(receiver.ended, "it returned while a handler of the object was running on another thread");
        trial.workUntil([&] { return receiver.ended.load(); });
    }
}

void timersWaitForTheirExpiry(Trial& trial) {
    if (!hasSearchThread(trial)) {
        return;
    }
    SlowReceiver receiver;
    {
        chThreadTimer timer(0);
        timer.SetTimer(1, nullptr, &receiver, Receiver::timerHandler);
        trial.expect(trial.workUntil([&] { return receiver.running.load(); }), "no expiry came");
        timer.KillTimer(); // so that no second one begins
    }
    trial.expect(receiver.ended, "a timer was destroyed while an expiry of it was running on another thread");
    trial.workUntil([&] { return receiver.ended.load(); });
}

void killedTimersAreSilentElsewhere(Trial& trial) {
    SearchReceiver receiver;
    chThreadTimer timer(0);
    Busy busy(trial);
    timer.SetTimer(1, nullptr, &receiver, Receiver::timerHandler);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    timer.KillTimer();
    busy.end();
    trial.work(10);
    trial.expect(receiver.count == 0, "%d expiries came after the timer had been killed", receiver.count.load());
}

void timersRunOnTheirThread(Trial& trial) {
    std::atomic<std::thread::id> executedOn;
    std::atomic<std::thread::id> expiredOn;
    SearchReceiver receiver;
    receiver.received = [&](CTaskAction*) { expiredOn = std::this_thread::get_id(); };
    execute(trial, [&] { executedOn = std::this_thread::get_id(); });
    chThreadTimer timer(0);
    timer.SetTimer(1, nullptr, &receiver, Receiver::timerHandler);
    if (trial.expect(trial.workUntil([&] { return receiver.count > 0; }), "no expiry came")) {
        timer.KillTimer();
        trial.work(2);
        trial.expect(executedOn.load() == expiredOn.load(),
                     "a timer of an object of the search thread expired elsewhere");
    }
}

constexpr Check checks[] = {
    {"the last release destroys", "chObject::Release", "TaskAction.h",
     "the last Release destroys it if it was marked as created on the heap with SetCreatFlag(true)",
     "pages do not pile up", lastReleaseDestroys},
    {"objects of others stay", "chObject::Release", "TaskAction.h",
     "False (as constructed): it belongs to someone else and Release only counts.", "nothing is freed twice",
     ownedObjectsStay},
    {"whole objects are freed", "chObject::Release", "TaskAction.h",
     "Such an action is allocated with the tracking operator new (TrackedMemory.h), which is also how the last Release "
     "gives its memory back.",
     "the search can be released: it has two bases, and the counted one does not come first", wholeObjectsAreFreed},
    {"bases do nothing", "CTaskAction::Exec", "TaskAction.h", "The work itself. True: done", "pages have no work to do",
     basesAreAsTheyWereMade},
    {"queued actions hold their reference", "TaskAction_ExecAction", "TaskAction.h",
     "An action that is queued twice is executed twice. Holds a reference on it until Exec has returned or the phone "
     "goes down.",
     "the search may be released while it is queued", queuedActionsAreExecuted},
    {"executed actions are let go", "TaskAction_ExecAction", "TaskAction.h",
     "Holds a reference on it until Exec has returned or the phone goes down.", "the search can be released",
     executedActionsAreLetGo},
    {"null is not taken", "TaskAction_ExecAction", "TaskAction.h", "zero: not taken (null action",
     "a screen hears that its request was refused", nullIsNotTaken},
    {"messages come on their thread", "CTaskActionCallbackBase::SetCallBackThread", "TaskAction.h",
     "The thread on which OnTaskActionCallback runs, as returned by GetLocalThreadByName",
     "LDAP answers come on the thread that searches", messagesComeOnTheirThread},
    {"the main thread is the default", "CTaskActionCallbackBase::SetCallBackThread", "TaskAction.h",
     "null means the phone's main thread", "a screen gets its pages on its own thread", mainIsTheDefault},
    {"timers run on their thread", "CTaskActionCallbackBase::SetCallBackThread", "TaskAction.h",
     "Messages for this object, timer expiries included, run there too.", "LDAP answers and the timer take turns",
     timersRunOnTheirThread},
    {"order is kept", "CTaskActionCallbackBase::SendMessageToCallingThread", "MsgQueueHelper.h",
     "One thread works one message at a time, in order of due time and, for equal times, of posting.",
     "the newest page is the last one to come", orderIsKept},
    {"posting calls nothing back", "CTaskActionCallbackBase::SendMessageToCallingThread", "TaskAction.h",
     "it never waits for the receiver and calls nothing back, so a caller may hold locks",
     "the search posts pages with a lock held that a screen's own calls take", postingCallsNothingBack},
    {"posting never waits", "CTaskActionCallbackBase::SendMessageToCallingThread", "TaskAction.h",
     "it never waits for the receiver and calls nothing back, so a caller may hold locks",
     "a search does not wait until a screen has drawn its page", postingDoesNotWait},
    {"posted actions hold their reference", "CTaskActionCallbackBase::SendMessageToCallingThread", "TaskAction.h",
     "Holds a reference on pAction until OnTaskActionCallback has returned or the message has been withdrawn.",
     "a page is there until its screen has shown it, and no longer", postedPagesAreHeld},
    {"null is not posted", "CTaskActionCallbackBase::SendMessageToCallingThread", "TaskAction.h",
     "Does nothing for null", "a page that there was no memory for is not shown", nullIsNotPosted},
    {"withdrawal removes", "chMsgProcesser::WithdrawMessages", "MsgQueueHelper.h",
     "Nothing is delivered to the object afterwards", "a screen that has closed gets no page",
     withdrawnMessagesAreGone},
    {"withdrawal waits", "chMsgProcesser::WithdrawMessages", "MsgQueueHelper.h",
     "waits for a message for it that is running on another thread",
     "the search is destroyed when nothing works in it any more", withdrawalWaits},
    {"killed timers never expire on other threads", "chThreadTimer::KillTimer", "MsgQueueHelper.h",
     "No expiry begins after this call, unless the timer is set again.",
     "LDAP keeps its place in a page that was ready in time", killedTimersAreSilentElsewhere},
    {"destroying a timer waits for its expiry", "chThreadTimer::~chThreadTimer", "MsgQueueHelper.h",
     "Stops the timer and waits for an expiry of it that is running on another thread.",
     "the search is destroyed when nothing works in it any more", timersWaitForTheirExpiry},
};

} // namespace

constexpr Group tasks = {"tasks", checks};

} // namespace platform_check
