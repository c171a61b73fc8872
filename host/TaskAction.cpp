#include "platform/TaskAction.h"

#include "host/ActionRef.h"
#include "host/PhoneCore.h"
#include "host/Processor.h"
#include "platform/TrackedMemory.h"

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
    SetProcessThread(pThread);
}

void CTaskActionCallbackBase::SendMessageToCallingThread(CTaskAction* pAction) {
    const auto phone = host::currentPhone();
    if (!phone || !pAction) {
        return;
    }
    phone->interrupt("SendMessageToCallingThread");
    phone->trace({.kind = host::TraceKind::pageSent});
    const auto processor = host::Processor::of(*this);
    processor->post(phone->kernel, processor->thread(), nullptr, {}, "callback",
                    [this, action = host::ActionRef(pAction)] { OnTaskActionCallback(action.get()); });
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
    phone->interrupt("TaskAction_ExecAction");
    phone->trace({.kind = host::TraceKind::requestQueued});
    const auto run = [action = host::ActionRef(pAction)] {
        const auto current = host::currentPhone();
        if (current) {
            current->trace({.kind = host::TraceKind::requestStarted});
        }
        action->Exec();
        if (current) {
            current->trace({.kind = host::TraceKind::requestFinished});
        }
    };
    const bool queued =
        phone->kernel.post(phone->kernel.findThread(host::Kernel::searchThread), {}, {}, "request", run);
    phone->interrupt("TaskAction_ExecAction:answered");
    return queued ? 1 : 0;
}
