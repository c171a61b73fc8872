// What an empty search box offers: the recent outgoing calls.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/Directory.h"

#include <algorithm>

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
    MyForgetSearched(); // with the rows, whether or not there is memory for a page in their place
    MySearchRecent();
    MyCallback("", "");
    return true;
}

bool CWideseekAction::MySearchRecent() {
    if (!m_page.HasRecord()) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    int iTotalCount = 0;
    if (Wideseek_IsRecentSearchOpen()) {
        m_page.SetPosition(GetFromIndex(), RECENT_CALL_COUNT);
        OxVector<GeneralDirItemData> vecItem;
        const int iAvailable = Directory_SearchCallLogRecentOutCall(vecItem, GetFromIndex(), RECENT_CALL_COUNT);
        for (int i = 0; iAvailable >= 0 && i < vecItem.Count(); ++i) {
            MyAppendRecent(vecItem.At(i));
        }
        iTotalCount = std::max(iAvailable, 0);
    }
    m_page.Publish("", iTotalCount);
    SetResultCode(0);
    return true;
}

void CWideseekAction::MyAppendRecent(const GeneralDirItemData* pCall) {
    if (pCall == nullptr) {
        return;
    }
    const ItemData row = RowOfCall(*pCall);
    if (!row.IsBlank()) {
        m_page.Append(row);
    }
}

} // namespace NS_WS
