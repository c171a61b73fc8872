// Actions and receivers that tell what became of them, and the search thread as the checks use it.
#pragma once

#include "platform/TaskAction.h"
#include "platform_check/Check.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace platform_check {

// The handle of the search thread; null when there is none.
void* searchThread();

// An action whose life is told to whoever made it. It stands on the heap and belongs to its references.
struct ActionLife {
    std::atomic<int> executions = 0;
    std::atomic<bool> destroyed = false;
    std::function<void()> work; // what Exec does
};

class ProbeAction : public NS_TA::CTaskAction {
public:
    explicit ProbeAction(std::shared_ptr<ActionLife> life) : m_life(std::move(life)) {}
    ~ProbeAction() override { m_life->destroyed = true; }

    bool Exec() override;

private:
    const std::shared_ptr<ActionLife> m_life;
};

// Makes an action with one reference for the caller, marked as created on the heap. Null, which fails the trial, when
// the phone has no memory.
NS_TA::CTaskAction* makeAction(Trial& trial, const std::shared_ptr<ActionLife>& life);

// Receives actions: calls `received` with each.
class Receiver : public NS_TA::CTaskActionCallbackBase {
public:
    ~Receiver() override { WithdrawMessages(); }

    using NS_TA::CTaskActionCallbackBase::WithdrawMessages;

    void OnTaskActionCallback(NS_TA::CTaskAction* action) override;
    int OnTimer(ETL_MsgQueueHelper::msgObject&);

    static constexpr auto timerHandler =
        static_cast<int (ETL_MsgQueueHelper::chMsgProcesser::*)(ETL_MsgQueueHelper::msgObject&)>(&Receiver::OnTimer);

    std::atomic<int> count = 0; // of messages, timer expiries included
    std::function<void(NS_TA::CTaskAction*)> received;
};

// Queues work for the search thread, by an action of its own. False, which fails the trial, when it was refused.
bool execute(Trial& trial, std::function<void()> work);

// True when the search thread is one of its own: what is to happen on two threads at once can. Else skips the trial.
bool hasSearchThread(Trial& trial);

// Keeps the search thread busy as long as it exists, so that what is posted to it stays queued. Does nothing on a phone
// with one thread, where nothing runs meanwhile anyway.
class Busy {
public:
    explicit Busy(Trial& trial);
    ~Busy();

    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

    // Lets the search thread go and waits until it has done everything that was queued for it before.
    void end();

private:
    struct State {
        std::atomic<bool> running = false;
        std::atomic<bool> released = false;
    };

    Trial& m_trial;
    const std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace platform_check
