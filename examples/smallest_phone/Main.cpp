// The smallest phone that can search: types each of its arguments into a search box, and prints what the phone is asked
// meanwhile and the pages that come.
#include "Phone.h"

#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

class CScreen : public NS_TA::CTaskActionCallbackBase {
public:
    ~CScreen() override {
        Wideseek_ResetCallBack(this);
        WithdrawMessages();
    }

    void OnKey(const std::string& strTyped) {
        std::printf("typed \"%s\"\n", strTyped.c_str());
        Wideseek_SearchUnion(strTyped, 0, 10, this); // returns at once
    }

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        if (pAction->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID) {
            Show(static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList());
        }
    }

private:
    static void Show(const WideseekListData& page) {
        std::printf("  page for \"%s\": %zu of %d\n", page.strKey.c_str(), page.listItem.size(), page.iTotalCount);
        for (const WideseekItemData& row : page.listItem) {
            std::printf("    %s %s\n", row.strName.c_str(), row.strNumber.c_str());
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    phone::talks = true;
    std::vector<std::string> keys(argv + 1, argv + argc);
    if (keys.empty()) {
        keys = {"5", "53", "530", "fox"};
    }
    if (!Wideseek_PreInit()) {
        return 1;
    }
    {
        CScreen screen;
        for (const std::string& strKey : keys) {
            screen.OnKey(strKey);
            phone::run();
        }
    }
    NS_WS::CWideseekController::ReleaseInstance();
    phone::run(); // lets go of what was queued
    return 0;
}
