// The callback object: stands where a phone's search screen stands.
//
// Pages arrive on the phone's main thread, which is the thread that serves the kernel's main queue. Its owner detaches
// it (Wideseek_ResetCallBack) before it goes away.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/TaskAction.h"

#include <functional>

namespace wideseek {

class Screen : public NS_TA::CTaskActionCallbackBase {
public:
    using PageHandler = std::function<void(const WideseekListData& page)>;

    explicit Screen(PageHandler onPage);

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;

private:
    PageHandler m_onPage;
};

} // namespace wideseek
