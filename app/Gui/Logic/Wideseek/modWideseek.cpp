#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"

#include <list>

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

bool SearchRecentOutCall(CallLogSearchListData& list) {
    OxVector<GeneralDirItemData> vecItem;
    const int iAvailable = Directory_SearchCallLogRecentOutCall(vecItem, list.iFromIndex, list.iSearchCount);
    if (iAvailable < 0) {
        return false;
    }
    std::list<CallLogSearchData> listCall;
    for (int i = 0; i < vecItem.Count(); ++i) {
        const GeneralDirItemData* pCall = vecItem.At(i);
        if (pCall != nullptr) {
            listCall.push_back({pCall->strName, pCall->strNumber});
        }
    }
    list.iTotalCount = iAvailable;
    list.listItem.splice(list.listItem.end(), listCall);
    return true;
}

} // namespace

using NS_WS::WithoutException;

bool Wideseek_PreInit() {
    return WithoutException(false, [] {
        const NS_WS::CWideseekController::CUse use(true);
        return use && use->PreInit();
    });
}

bool Wideseek_SearchUnion(const std::string& strKey, int iFromIndex, int iSearchCount,
                          NS_TA::CTaskActionCallbackBase* pCallback) {
    return WithoutException(false, [&] {
        const NS_WS::CWideseekController::CUse use(true);
        return use && use->SearchUnion(strKey, iFromIndex, iSearchCount, pCallback);
    });
}

void Wideseek_ResetKey() {
    WithoutException(false, [] {
        const NS_WS::CWideseekController::CUse use(true);
        if (use) {
            use->ResetKey();
        }
        return true;
    });
}

void Wideseek_ResetCallBack(NS_TA::CTaskActionCallbackBase* pCallback) {
    WithoutException(false, [&] {
        const NS_WS::CWideseekController::CUse use(true);
        if (use) {
            use->ResetCallback(pCallback);
        }
        return true;
    });
}

bool Wideseek_IsRecentSearchOpen() {
    return WithoutException(false,
                            [] { return configParser_GetConfigInt("FeaturesRecentCallEnable") == RECENT_SEARCH_OPEN; });
}

bool Wideseek_SearchRecentOutCall(CallLogSearchListData* pList) {
    return pList != nullptr && WithoutException(false, [&] { return SearchRecentOutCall(*pList); });
}

NS_WS::CWideseekAction* Wideseek_CreateSearchAction() {
    auto* pAction = WithoutException<NS_WS::CWideseekAction*>(
        nullptr, [] { return WS_NEW("app/Gui/Logic/Wideseek/modWideseek") NS_WS::CWideseekAction; });
    TakeReference(pAction);
    return pAction;
}

void Wideseek_DestroySearchAction(NS_WS::CWideseekAction* pAction) {
    GiveUpReference(pAction);
}

NS_WS::CWideseekCBData* Wideseek_CreateSearchCBAction() {
    auto* pData = WithoutException<NS_WS::CWideseekCBData*>(
        nullptr, [] { return WS_NEW("app/Gui/Logic/Wideseek/modWideseek") NS_WS::CWideseekCBData; });
    TakeReference(pData);
    return pData;
}

void Wideseek_DestroySearchCBAction(NS_WS::CWideseekCBData* pData) {
    GiveUpReference(pData);
}
