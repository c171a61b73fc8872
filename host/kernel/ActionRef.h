// A counted hold on a task action, for as long as it lives. Copies hold it too.
#pragma once

#include "platform/TaskAction.h"

#include <utility>

namespace host {

class ActionRef {
public:
    explicit ActionRef(NS_TA::CTaskAction* action) : m_action(action) {
        if (m_action) {
            m_action->AddRef();
        }
    }
    ActionRef(const ActionRef& other) : ActionRef(other.m_action) {}
    ActionRef(ActionRef&& other) noexcept : m_action(std::exchange(other.m_action, nullptr)) {}
    ActionRef& operator=(ActionRef other) noexcept {
        std::swap(m_action, other.m_action);
        return *this;
    }
    ~ActionRef() {
        if (m_action) {
            m_action->Release();
        }
    }

    NS_TA::CTaskAction* get() const { return m_action; }
    NS_TA::CTaskAction* operator->() const { return m_action; }

private:
    NS_TA::CTaskAction* m_action;
};

} // namespace host
