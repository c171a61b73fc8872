// What an empty search box offers: the recent outgoing calls.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/Directory.h"

namespace NS_WS {

namespace {

constexpr int RECENT_CALL_COUNT = 10;

} // namespace

bool CWideseekAction::ReadEmptyByKey() {
    // Both modules are told of the empty key; what they find is not used.
    WideseekItemListData data;
    Directory_LocalDirWideseek(&data);
    if (MyIsStopped()) {
        return true;
    }
    data.listResult.Clear();
    data.strKey.clear();
    data.iReserved1 = 0;
    data.iReserved2 = 0;
    data.iReserved3 = 0;
    Directory_LocalLogWideseek(&data);
    if (MyIsStopped()) {
        return true;
    }

    MyClearResult();
    MySearchRecent();
    MyCallback("", "");
    return true;
}

bool CWideseekAction::MySearchRecent() {
    if (m_pResultList == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    WideseekListData page;
    if (Wideseek_IsRecentSearchOpen()) {
        m_iSearchCount = RECENT_CALL_COUNT;
        OxVector<GeneralDirItemData> vecItem;
        const int iAvailable = Directory_SearchCallLogRecentOutCall(vecItem, GetFromIndex(), RECENT_CALL_COUNT);
        if (iAvailable >= 0) {
            page.iTotalCount = iAvailable;
            MyAppendRecent(vecItem, page);
        }
    }
    MySetPage(page);
    MyForgetSearched();
    SetResultCode(0);
    return true;
}

void CWideseekAction::MyAppendRecent(const OxVector<GeneralDirItemData>& vecItem, WideseekListData& page) {
    for (int i = 0; i < vecItem.Count(); ++i) {
        const GeneralDirItemData* pCall = vecItem.At(i);
        if (pCall == nullptr || (pCall->strName.empty() && pCall->strNumber.empty())) {
            continue;
        }
        WideseekItemData item;
        item.strName = pCall->strName.empty() ? pCall->strNumber : pCall->strName;
        item.strNumber = pCall->strNumber;
        item.strExtra2 = pCall->strExtra;
        page.listItem.push_back(item);
    }
}

} // namespace NS_WS
