#include "host/PhoneCore.h"
#include "host/kernel/Processor.h"
#include "platform/MsgQueueHelper.h"

#include <algorithm>
#include <new>

namespace {

using ETL_MsgQueueHelper::chMsgProcesser;
using ETL_MsgQueueHelper::msgObject;
using Handler = int (chMsgProcesser::*)(msgObject& msg);

// What a timer was last set to. An expiry carries the number of the setting that it comes from and begins only while
// that setting stands, so that a killed timer stays silent even when its message was taken from the queue a moment
// before.
class TimerState : public std::enable_shared_from_this<TimerState> {
public:
    bool isRunning() const {
        const std::lock_guard lock(m_mutex);
        return m_running;
    }

    // False when there is no memory for it; the timer is stopped then.
    bool set(host::PhoneCore& phone, chMsgProcesser& receiver, Handler handler, host::Duration period) {
        kill();
        const std::lock_guard lock(m_mutex);
        m_processor = host::Processor::of(receiver);
        m_receiver = &receiver;
        m_handler = handler;
        m_period = period;
        m_nextDue = phone.kernel.now() + period;
        m_running = true;
        ++m_setting; // two threads that set at the same time leave one timer
        return post(phone);
    }

    void kill() {
        {
            const std::lock_guard lock(m_mutex);
            m_running = false;
            ++m_setting;
        }
        if (const auto phone = host::currentPhone()) {
            phone->kernel.withdrawToken(this);
        }
    }

private:
    // With the mutex held: queues the expiry that is due next. Without memory for it the timer stops.
    bool post(host::PhoneCore& phone) {
        const auto delay = std::max(m_nextDue - phone.kernel.now(), host::Duration::zero());
        try {
            m_processor->post(phone.kernel, m_processor->thread(), this, delay, "timer",
                              [self = shared_from_this(), setting = m_setting] { self->expire(setting); });
        } catch (const std::bad_alloc&) {
            m_running = false;
            phone.report(2, "a timer stops: there is no memory for its next expiry");
        }
        return m_running;
    }

    void expire(std::uint64_t setting) {
        const auto phone = host::currentPhone();
        std::unique_lock lock(m_mutex);
        if (!phone || setting != m_setting) {
            return;
        }
        chMsgProcesser* receiver = m_receiver;
        const Handler handler = m_handler;
        lock.unlock();

        phone->trace({.kind = host::TraceKind::timerExpired});
        msgObject message{ETL_MsgQueueHelper::MSG_THREAD_TIMER, 0};
        if (receiver->TryThreadMessage(message) == 0) {
            (receiver->*handler)(message);
        }

        lock.lock();
        if (setting == m_setting) {
            m_nextDue = std::max(m_nextDue + m_period, phone->kernel.now());
            post(*phone);
        }
    }

    mutable std::mutex m_mutex;
    std::shared_ptr<host::Processor> m_processor; // all guarded by m_mutex
    chMsgProcesser* m_receiver = nullptr;
    Handler m_handler = nullptr;
    host::Duration m_period{};
    host::Duration m_nextDue{};
    std::uint64_t m_setting = 0;
    bool m_running = false;
};

using SharedTimer = std::shared_ptr<TimerState>;

TimerState& timerOf(void* state) {
    return **static_cast<SharedTimer*>(state);
}

} // namespace

namespace ETL_MsgQueueHelper {

chThreadTimer::chThreadTimer(int) : m_pState(std::make_unique<SharedTimer>(std::make_shared<TimerState>()).release()) {
}

chThreadTimer::~chThreadTimer() {
    const std::unique_ptr<SharedTimer> state(static_cast<SharedTimer*>(m_pState));
    (*state)->kill();
    if (const auto phone = host::currentPhone()) {
        phone->kernel.withdrawTokenAndWait(state->get());
    }
}

bool chThreadTimer::IsTimerRuning() const {
    return timerOf(m_pState).isRunning();
}

void chThreadTimer::KillTimer() {
    timerOf(m_pState).kill();
}

bool chThreadTimer::SetTimer(long long llPeriod, void*, chMsgProcesser* pProcesser,
                             int (chMsgProcesser::*pHandler)(msgObject& msg)) {
    const auto phone = host::currentPhone();
    if (!phone || !pProcesser || !pHandler) {
        KillTimer();
        return false;
    }
    phone->interrupt(host::PlatformFunction::setTimer);
    constexpr long long longest = std::chrono::milliseconds(std::chrono::hours(24 * 365)).count();
    const std::chrono::milliseconds period(std::clamp(llPeriod, 1LL, longest));
    phone->trace({.kind = host::TraceKind::timerSet});
    return timerOf(m_pState).set(*phone, *pProcesser, pHandler, period);
}

} // namespace ETL_MsgQueueHelper
