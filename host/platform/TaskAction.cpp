#include "platform/TaskAction.h"

#include "host/PhoneCore.h"
#include "host/kernel/ActionRef.h"
#include "host/kernel/Processor.h"
#include "platform/TrackedMemory.h"

#include <new>
#include <utility>

namespace NS_TA {

chObject::chObject() : m_iReferences(0), m_bCreated(false) {
}

chObject::~chObject() = default;

void chObject::AddRef() {
    m_iReferences.fetch_add(1, std::memory_order_relaxed);
}

void chObject::Release() {
    int count = m_iReferences.load(std::memory_order_relaxed);
    while (count > 0 && !m_iReferences.compare_exchange_weak(count, count - 1, std::memory_order_acq_rel)) {
    }
    if (count == 1 && m_bCreated) {
        void* block = dynamic_cast<void*>(this); // this may lie inside the object whose block it is
        this->~chObject();
        ::operator delete(block, __FILE__, __LINE__);
    }
}

void chObject::SetCreatFlag(bool bCreated) {
    m_bCreated = bCreated;
}

CTaskActionCallbackBase::CTaskActionCallbackBase() = default;

CTaskActionCallbackBase::~CTaskActionCallbackBase() = default;

void CTaskActionCallbackBase::OnTaskActionCallback(CTaskAction*) {
}

void CTaskActionCallbackBase::SetCallBackThread(void* pThread) {
    host::Processor::of(*this)->setThread(pThread);
}

void CTaskActionCallbackBase::SendMessageToCallingThread(CTaskAction* pAction) {
    const auto phone = host::currentPhone();
    if (!phone || !pAction) {
        return;
    }
    phone->interrupt(host::PlatformFunction::sendToThread);
    phone->trace({.kind = host::TraceKind::pageSent});
    const auto processor = host::Processor::of(*this);
    try {
        processor->post(phone->kernel, processor->thread(), nullptr, {}, "callback",
                        [this, action = host::ActionRef(pAction)] { OnTaskActionCallback(action.get()); });
    } catch (const std::bad_alloc&) {
        phone->report(2, "a page is lost: there is no memory to post it");
    }
}

CTaskAction::CTaskAction() : m_iTypeId(0), m_iResultCode(0), m_bRead(false), m_bFlag(false), m_pCallback(nullptr) {
}

CTaskAction::~CTaskAction() = default;

bool CTaskAction::Exec() {
    return true;
}

} // namespace NS_TA

int TaskAction_ExecAction(NS_TA::CTaskAction* pAction) {
    const auto phone = host::currentPhone();
    if (!phone || !pAction) {
        return 0;
    }
    phone->interrupt(host::PlatformFunction::execAction);
    phone->trace({.kind = host::TraceKind::requestQueued});
    auto run = [action = host::ActionRef(pAction)] {
        const auto current = host::currentPhone();
        if (current) {
            current->trace({.kind = host::TraceKind::requestStarted});
        }
        action->Exec();
        if (current) {
            current->trace({.kind = host::TraceKind::requestFinished});
        }
    };
    bool queued = false;
    try {
        queued =
            phone->kernel.post(phone->kernel.findThread(host::Kernel::searchThread), {}, {}, "request", std::move(run));
    } catch (const std::bad_alloc&) {
        phone->report(2, "a request is not taken: there is no memory to queue it");
    }
    phone->interrupt(host::PlatformFunction::execAction, host::PlatformCall::Moment::answered);
    return queued ? 1 : 0;
}
