#include "tools/wideseek/Screen.h"

#include "app/Gui/Logic/Wideseek/WideseekCBData.h"

#include <utility>

namespace wideseek {

Screen::Screen(PageHandler onPage) : m_onPage(std::move(onPage)) {
}

void Screen::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
    if (pAction && pAction->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID) {
        m_onPage(static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList());
    }
}

} // namespace wideseek
