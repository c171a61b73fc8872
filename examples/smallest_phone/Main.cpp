// The smallest phone that can search: types each of its arguments into a search box and prints the pages that come.
#include "Messaging.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include <cstdio>

namespace {

class CScreen : public NS_TA::CTaskActionCallbackBase {
public:
    ~CScreen() override {
        Wideseek_ResetCallBack(this);
        WithdrawMessages();
    }

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        if (pAction->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID) {
            const WideseekListData page = static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList();
            std::printf("%s: %d", page.strKey.c_str(), page.iTotalCount);
            for (const WideseekItemData& row : page.listItem) {
                std::printf(", %s %s", row.strName.c_str(), row.strNumber.c_str());
            }
            std::printf("\n");
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    if (!Wideseek_PreInit()) {
        return 1;
    }
    {
        CScreen screen;
        for (int i = 1; i < argc; ++i) {
            Wideseek_SearchUnion(argv[i], 0, 10, &screen);
            phone::run();
        }
    }
    NS_WS::CWideseekController::ReleaseInstance();
    phone::run(); // lets go of what was queued
    return 0;
}
