#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"

namespace {

constexpr int RECENT_SEARCH_OPEN = 1;

// Takes the reference that the destroy function of the same kind gives up.
void TakeReference(NS_TA::CTaskAction* pAction) {
    if (pAction != nullptr) {
        pAction->AddRef();
        pAction->SetCreatFlag(true);
    }
}

void GiveUpReference(NS_TA::CTaskAction* pAction) {
    if (pAction != nullptr) {
        pAction->Release();
    }
}

} // namespace

bool Wideseek_PreInit() {
    const NS_WS::CWideseekController::CUse use(true);
    return use && use->PreInit();
}

bool Wideseek_SearchUnion(const std::string& strKey, int iFromIndex, int iSearchCount,
                          NS_TA::CTaskActionCallbackBase* pCallback) {
    const NS_WS::CWideseekController::CUse use(true);
    return use && use->SearchUnion(strKey, iFromIndex, iSearchCount, pCallback);
}

void Wideseek_ResetKey() {
    const NS_WS::CWideseekController::CUse use(true);
    if (use) {
        use->ResetKey();
    }
}

void Wideseek_ResetCallBack(NS_TA::CTaskActionCallbackBase* pCallback) {
    const NS_WS::CWideseekController::CUse use(true);
    if (use) {
        use->ResetCallback(pCallback);
    }
}

bool Wideseek_IsRecentSearchOpen() {
    return configParser_GetConfigInt("FeaturesRecentCallEnable") == RECENT_SEARCH_OPEN;
}

bool Wideseek_SearchRecentOutCall(CallLogSearchListData* pList) {
    if (pList == nullptr) {
        return false;
    }
    OxVector<GeneralDirItemData> vecItem;
    const int iAvailable = Directory_SearchCallLogRecentOutCall(vecItem, pList->iFromIndex, pList->iSearchCount);
    if (iAvailable < 0) {
        return false;
    }
    pList->iTotalCount = iAvailable;
    for (int i = 0; i < vecItem.Count(); ++i) {
        const GeneralDirItemData* pCall = vecItem.At(i);
        if (pCall != nullptr) {
            pList->listItem.push_back({pCall->strName, pCall->strNumber});
        }
    }
    return true;
}

NS_WS::CWideseekAction* Wideseek_CreateSearchAction() {
    auto* pAction = WS_NEW("app/Gui/Logic/Wideseek/modWideseek") NS_WS::CWideseekAction;
    TakeReference(pAction);
    return pAction;
}

void Wideseek_DestroySearchAction(NS_WS::CWideseekAction* pAction) {
    GiveUpReference(pAction);
}

NS_WS::CWideseekCBData* Wideseek_CreateSearchCBAction() {
    auto* pData = WS_NEW("app/Gui/Logic/Wideseek/modWideseek") NS_WS::CWideseekCBData;
    TakeReference(pData);
    return pData;
}

void Wideseek_DestroySearchCBAction(NS_WS::CWideseekCBData* pData) {
    GiveUpReference(pData);
}
