// The messaging, the task actions, the locks and the memory of the smallest phone: one thread that works one queue. A
// phone with several threads has a queue for each of them, with a lock, and waits in WithdrawMessages for a message
// that another thread is working.
#include "Messaging.h"

#include "platform/BaseHelper.h"
#include "platform/Ldap.h"
#include "platform/MsgQueueHelper.h"
#include "platform/TaskAction.h"
#include "platform/TrackedMemory.h"

#include <chrono>
#include <functional>
#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

struct Message {
    Clock::time_point due;
    const void* receiver; // whoever withdraws it
    std::function<void()> work;
};

std::list<Message> queue; // by due time, then by order of posting

void post(Clock::time_point due, const void* receiver, std::function<void()> work) {
    auto place = queue.end();
    while (place != queue.begin() && std::prev(place)->due > due) {
        --place;
    }
    queue.insert(place, {due, receiver, std::move(work)});
}

void withdraw(const void* receiver) {
    queue.remove_if([receiver](const Message& message) { return message.receiver == receiver; });
}

struct GiveUp {
    void operator()(NS_TA::chObject* pObject) const { pObject->Release(); }
};

// A reference that lives as long as the message that holds it: it goes when the message has run or is withdrawn.
std::shared_ptr<NS_TA::CTaskAction> referenceOn(NS_TA::CTaskAction* pAction) {
    pAction->AddRef();
    return {pAction, GiveUp()};
}

} // namespace

void phone::run() {
    while (!queue.empty()) {
        std::this_thread::sleep_until(queue.front().due);
        const Message message = std::move(queue.front());
        queue.pop_front();
        message.work();
    }
}

namespace ETL_MsgQueueHelper {

chMsgProcesser::chMsgProcesser() : m_pState(nullptr) {
}

chMsgProcesser::~chMsgProcesser() {
    withdraw(this);
}

int chMsgProcesser::TryThreadMessage(msgObject&) {
    return 0;
}

void chMsgProcesser::WithdrawMessages() {
    withdraw(this);
}

// m_pState is whom a running timer notifies.
chThreadTimer::chThreadTimer(int) : m_pState(nullptr) {
}

chThreadTimer::~chThreadTimer() {
    KillTimer();
}

bool chThreadTimer::IsTimerRuning() const {
    return m_pState != nullptr;
}

void chThreadTimer::KillTimer() {
    m_pState = nullptr;
    withdraw(this);
}

bool chThreadTimer::SetTimer(long long llPeriod, void* pUserData, chMsgProcesser* pProcesser,
                             int (chMsgProcesser::*pHandler)(msgObject& msg)) {
    if (pProcesser == nullptr || pHandler == nullptr) {
        return false;
    }
    KillTimer();
    m_pState = pProcesser;
    post(Clock::now() + std::chrono::milliseconds(llPeriod), this, [this, llPeriod, pUserData, pProcesser, pHandler] {
        SetTimer(llPeriod, pUserData, pProcesser, pHandler);
        msgObject msg{MSG_THREAD_TIMER, 0};
        if (pProcesser->TryThreadMessage(msg) == 0) {
            (pProcesser->*pHandler)(msg);
        }
    });
    return true;
}

void* chProcessLocal::GetLocalThreadByName(const char*) {
    return &queue;
}

chSystemShare* uCSystemShareHelpergetGlobalObject() {
    static chSystemShare share;
    return &share;
}

} // namespace ETL_MsgQueueHelper

// This phone's configuration never changes.
void EtlMsgHandler_RegisterMsgHandle(unsigned int, unsigned int, int (*)(ETL_MsgQueueHelper::msgObject&)) {
}

namespace NS_TA {

chObject::chObject() : m_iReferences(0), m_bCreated(false) {
}

chObject::~chObject() = default;

void chObject::AddRef() {
    ++m_iReferences;
}

void chObject::Release() {
    if (--m_iReferences == 0 && m_bCreated) {
        void* pBlock = dynamic_cast<void*>(this); // the whole object, whichever base this is
        this->~chObject();
        operator delete(pBlock, __FILE__, __LINE__);
    }
}

void chObject::SetCreatFlag(bool bCreated) {
    m_bCreated = bCreated;
}

CTaskAction::CTaskAction() : m_iTypeId(0), m_iResultCode(0), m_bRead(true), m_bFlag(false), m_pCallback(nullptr) {
}

CTaskAction::~CTaskAction() = default;

bool CTaskAction::Exec() {
    return true;
}

CLdapAction::CLdapAction() {
    SetTypeId(TASK_TYPE_LDAP);
}

CLdapAction::~CLdapAction() = default;

CTaskActionCallbackBase::CTaskActionCallbackBase() = default;
CTaskActionCallbackBase::~CTaskActionCallbackBase() = default;

void CTaskActionCallbackBase::OnTaskActionCallback(CTaskAction*) {
}

void CTaskActionCallbackBase::SetCallBackThread(void*) {
    // There is one thread.
}

void CTaskActionCallbackBase::SendMessageToCallingThread(CTaskAction* pAction) {
    if (pAction != nullptr) {
        post(Clock::now(), static_cast<chMsgProcesser*>(this),
             [this, reference = referenceOn(pAction)] { OnTaskActionCallback(reference.get()); });
    }
}

} // namespace NS_TA

int TaskAction_ExecAction(NS_TA::CTaskAction* pAction) {
    if (pAction == nullptr) {
        return 0;
    }
    post(Clock::now(), nullptr, [reference = referenceOn(pAction)] { reference->Exec(); });
    return 1;
}

namespace ETL_BaseHelper {

chCriticalSection::chCriticalSection() : m_pLock(new std::recursive_mutex) {
}

chCriticalSection::~chCriticalSection() {
    delete static_cast<std::recursive_mutex*>(m_pLock);
}

void chCriticalSection::Lock() {
    static_cast<std::recursive_mutex*>(m_pLock)->lock();
}

void chCriticalSection::Unlock() {
    static_cast<std::recursive_mutex*>(m_pLock)->unlock();
}

} // namespace ETL_BaseHelper

void* operator new(std::size_t uSize, const char*, int) noexcept {
    return ::operator new(uSize, std::nothrow);
}

void operator delete(void* pBlock, const char*, int) noexcept {
    ::operator delete(pBlock);
}
