// The phone's messaging: named threads that work through queues of messages, the objects that messages are for, timers,
// and the registration of handlers for the phone's own messages.
//
// One thread works one message at a time, in order of due time and, for equal times, of posting.
//
// A message never reaches an object that is gone: see chMsgProcesser::WithdrawMessages and the destructors below.
#pragma once

namespace ETL_MsgQueueHelper {

// The thread on which contact searches are done.
inline constexpr const char* THREAD_CONTACT_SEARCH = "ThreadLocalContactSearch";

// The messages that the search knows, and their first parameters.
inline constexpr unsigned int MSG_THREAD_TIMER = 0x8113;    // a thread timer has expired
inline constexpr unsigned int MSG_CONFIG_CHANGED = 0x10007; // a part of the configuration has changed, namely:
inline constexpr long long CFG_CHANGE_WIDESEEK = 52;        // the list of contact sources

struct chProcesserAccess; // the messaging's own way to an object's state

// One message as its handler sees it.
struct msgObject {
    unsigned int uMessageId = 0; // what happened, such as MSG_THREAD_TIMER
    long long llParam1 = 0;      // first parameter; its meaning depends on the message
};

// Base of every object that messages are sent to.
class chMsgProcesser {
public:
    chMsgProcesser();

    // Offered every message that has a msgObject, such as a timer's expiry, before the handler that it is for.
    // Non-zero: the message is dealt with. The base's answer is 0. Runs on the object's thread.
    virtual int TryThreadMessage(msgObject& msg);

    // Does what WithdrawMessages does, for objects that need it no earlier.
    virtual ~chMsgProcesser();

    chMsgProcesser(const chMsgProcesser&) = delete;
    chMsgProcesser& operator=(const chMsgProcesser&) = delete;

protected:
    // Removes every message that is queued for this object, timer expiries and answers of asynchronous queries
    // included, and waits for a message for it that is running on another thread. Nothing is delivered to the object
    // afterwards: what is posted later is let go of, and a timer that notifies the object stays set, but no expiry of
    // it comes any more. Needs no memory. The destructor of a class whose members its handlers use calls this first, so
    // that no handler meets a half destroyed object. Any thread; must not be called with a lock held that a handler of
    // this object takes.
    void WithdrawMessages();

private:
    friend struct chProcesserAccess;

    void* m_pState;
};

// A repeating timer on the thread of the object that it notifies. All operations may be called from any thread.
class chThreadTimer {
public:
    // A timer that is not running. iReserved is 0.
    explicit chThreadTimer(int iReserved);

    // Stops the timer and waits for an expiry of it that is running on another thread.
    ~chThreadTimer();

    chThreadTimer(const chThreadTimer&) = delete;
    chThreadTimer& operator=(const chThreadTimer&) = delete;

    // True from SetTimer until KillTimer.
    bool IsTimerRuning() const;

    // No expiry begins after this call, unless the timer is set again. An expiry that is already running is not waited
    // for, so a handler may kill its own timer. Needs no memory.
    void KillTimer();

    // Calls (pProcesser->*pHandler) with a message of id MSG_THREAD_TIMER every llPeriod milliseconds (1 when it is
    // less), the first time llPeriod from now, on the thread of pProcesser. Setting a running timer starts its period
    // anew. pUserData is not used by the timer. Returns false when pProcesser or pHandler is null or there
    // is no memory; the timer is stopped then. pProcesser is not owned.
    bool SetTimer(long long llPeriod, void* pUserData, chMsgProcesser* pProcesser,
                  int (chMsgProcesser::*pHandler)(msgObject& msg));

private:
    void* m_pState;
};

// The threads of this process.
class chProcessLocal {
public:
    // The handle of a thread, for whatever names a thread to run on; null when there is none of this name. Handles stay
    // valid as long as the phone runs. Any thread.
    void* GetLocalThreadByName(const char* pszName);
};

// What the process shares.
struct chSystemShare {
    chProcessLocal m_processLocal;
};

// Never null. Any thread.
chSystemShare* uCSystemShareHelpergetGlobalObject();

} // namespace ETL_MsgQueueHelper

// Has pHandler called for every phone message with an id from uFirstId to uLastId, both included, on the phone's
// message thread, which is none of the threads that search. Registering the same handler for the same ids again changes
// nothing. A registration is never withdrawn. The handler's result is for the phone's log only. Throws std::bad_alloc,
// with nothing registered, without memory. Any thread.
void EtlMsgHandler_RegisterMsgHandle(unsigned int uFirstId, unsigned int uLastId,
                                     int (*pHandler)(ETL_MsgQueueHelper::msgObject& msg));
