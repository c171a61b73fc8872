// The messaging, the task actions, the locks and the memory of the smallest phone: one thread that works one queue. A
// phone with several threads has a queue for each of them, with a lock, and waits in WithdrawMessages for a message
// that another thread is working.
#include "Phone.h"

#include "platform/BaseHelper.h"
#include "platform/Ldap.h"
#include "platform/MsgQueueHelper.h"
#include "platform/TaskAction.h"
#include "platform/TrackedMemory.h"

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <thread>
#include <utility>

namespace ETL_MsgQueueHelper {

// m_pState is null as long as the object takes messages.
struct chProcesserAccess {
    static bool isOpen(const chMsgProcesser& receiver) { return receiver.m_pState == nullptr; }
    static void close(chMsgProcesser& receiver) { receiver.m_pState = &receiver; }
};

} // namespace ETL_MsgQueueHelper

namespace {

using Clock = std::chrono::steady_clock;
using ETL_MsgQueueHelper::chMsgProcesser;
using ETL_MsgQueueHelper::chProcesserAccess;

struct Message {
    Clock::time_point due;
    const chMsgProcesser* receiver; // null for the search thread's own work
    const void* token;              // the timer or query that it comes from
    std::function<void()> work;
};

std::list<Message> queue; // by due time, then by order of posting

void post(Message message) {
    if (message.receiver != nullptr && !chProcesserAccess::isOpen(*message.receiver)) {
        return;
    }
    auto place = queue.end();
    while (place != queue.begin() && std::prev(place)->due > message.due) {
        --place;
    }
    queue.insert(place, std::move(message));
}

template <typename Which> void withdraw(const Which& isMeant) {
    // What a message holds is let go of when the queue is whole again: that may withdraw others.
    std::list<Message> withdrawn;
    for (auto each = queue.begin(); each != queue.end();) {
        const auto next = std::next(each);
        if (isMeant(*each)) {
            withdrawn.splice(withdrawn.end(), queue, each);
        }
        each = next;
    }
}

void workNext() {
    std::this_thread::sleep_until(queue.front().due);
    const Message message = std::move(queue.front());
    queue.pop_front();
    message.work();
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

bool phone::talks = false;

void phone::tell(const char* pszFormat, ...) {
    if (talks) {
        va_list values;
        va_start(values, pszFormat);
        std::printf("  asked: ");
        std::vprintf(pszFormat, values);
        std::printf("\n");
        va_end(values);
    }
}

void phone::run() {
    while (!queue.empty()) {
        workNext();
    }
}

void phone::runFor(int milliseconds) {
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (!queue.empty() && queue.front().due <= end) {
        workNext();
    }
    std::this_thread::sleep_until(end);
}

void phone::postAnswer(NS_TA::CTaskActionCallbackBase& receiver, NS_TA::CTaskAction* pAnswer) {
    static const char token = 0; // of all answers
    withdraw([&](const Message& message) { return message.receiver == &receiver && message.token == &token; });
    post({Clock::now(), &receiver, &token,
          [&receiver, reference = referenceOn(pAnswer)] { receiver.OnTaskActionCallback(reference.get()); }});
}

namespace ETL_MsgQueueHelper {

chMsgProcesser::chMsgProcesser() : m_pState(nullptr) {
}

chMsgProcesser::~chMsgProcesser() {
    WithdrawMessages();
}

int chMsgProcesser::TryThreadMessage(msgObject&) {
    return 0;
}

void chMsgProcesser::WithdrawMessages() {
    chProcesserAccess::close(*this);
    withdraw([this](const Message& message) { return message.receiver == this; });
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
    withdraw([this](const Message& message) { return message.token == this; });
}

bool chThreadTimer::SetTimer(long long llPeriod, void* pUserData, chMsgProcesser* pProcesser,
                             int (chMsgProcesser::*pHandler)(msgObject& msg)) {
    KillTimer();
    if (pProcesser == nullptr || pHandler == nullptr) {
        return false;
    }
    m_pState = pProcesser;
    const auto period = std::chrono::milliseconds(std::max(llPeriod, 1LL));
    post({Clock::now() + period, pProcesser, this, [this, llPeriod, pUserData, pProcesser, pHandler] {
              SetTimer(llPeriod, pUserData, pProcesser, pHandler);
              msgObject msg{MSG_THREAD_TIMER, 0};
              if (pProcesser->TryThreadMessage(msg) == 0) {
                  (pProcesser->*pHandler)(msg);
              }
          }});
    return true;
}

// A handle is anything that stands for the thread.
void* chProcessLocal::GetLocalThreadByName(const char* pszName) {
    return std::string_view(pszName) == THREAD_CONTACT_SEARCH ? &queue : nullptr;
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
        post({Clock::now(), this, nullptr,
              [this, reference = referenceOn(pAction)] { OnTaskActionCallback(reference.get()); }});
    }
}

} // namespace NS_TA

int TaskAction_ExecAction(NS_TA::CTaskAction* pAction) {
    if (pAction == nullptr) {
        return 0;
    }
    post({Clock::now(), nullptr, nullptr, [reference = referenceOn(pAction)] { reference->Exec(); }});
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
