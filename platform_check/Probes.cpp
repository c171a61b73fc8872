#include "platform_check/Probes.h"

#include "platform/TrackedMemory.h"

#include <chrono>
#include <utility>

namespace platform_check {

namespace {

// The thread that works what is queued for the search.
std::thread::id idOfSearchThread(Trial& trial) {
    const auto id = std::make_shared<std::atomic<std::thread::id>>();
    execute(trial, [id] { *id = std::this_thread::get_id(); });
    trial.expect(trial.workUntil([&] { return id->load() != std::thread::id(); }), "a queued action was not executed");
    return *id;
}

} // namespace

void* searchThread() {
    return ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(
        ETL_MsgQueueHelper::THREAD_CONTACT_SEARCH);
}

bool ProbeAction::Exec() {
    // What it does may let go of whoever made it.
    const std::shared_ptr<ActionLife> life = m_life;
    if (life->work) {
        life->work();
    }
    ++life->executions;
    return true;
}

NS_TA::CTaskAction* makeAction(Trial& trial, const std::shared_ptr<ActionLife>& life) {
    NS_TA::CTaskAction* action = new (__FILE__, __LINE__) ProbeAction(life);
    if (trial.expect(action != nullptr, "there is no memory for an action")) {
        action->SetCreatFlag(true);
        action->AddRef();
    }
    return action;
}

void Receiver::OnTaskActionCallback(NS_TA::CTaskAction* action) {
    if (received) {
        received(action);
    }
    ++count; // last: the check goes on from here
}

int Receiver::OnTimer(ETL_MsgQueueHelper::msgObject&) {
    OnTaskActionCallback(nullptr);
    return 1;
}

bool execute(Trial& trial, std::function<void()> work) {
    const auto life = std::make_shared<ActionLife>();
    life->work = std::move(work);
    NS_TA::CTaskAction* action = makeAction(trial, life);
    if (action == nullptr) {
        return false;
    }
    const bool taken = TaskAction_ExecAction(action) != 0;
    action->Release();
    return trial.expect(taken, "TaskAction_ExecAction gave zero for an action");
}

bool hasSearchThread(Trial& trial) {
    if (idOfSearchThread(trial) == std::this_thread::get_id()) {
        trial.skip("the phone has one thread");
        return false;
    }
    return true;
}

Busy::Busy(Trial& trial) : m_trial(trial) {
    if (idOfSearchThread(trial) == std::this_thread::get_id()) {
        return;
    }
    execute(trial, [state = m_state] {
        state->running = true;
        while (!state->released) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    trial.expect(trial.workUntil([this] { return m_state->running.load(); }), "a queued action was not executed");
}

Busy::~Busy() {
    m_state->released = true;
}

void Busy::end() {
    m_state->released = true;
    idOfSearchThread(m_trial);
}

} // namespace platform_check
