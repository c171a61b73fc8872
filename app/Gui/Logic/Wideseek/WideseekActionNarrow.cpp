// Narrowing: what is left of the rows held when the key grows.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRowWalk.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"

namespace NS_WS {

bool CWideseekAction::MySearchFromResult(std::string strKey, std::string strRawKey) {
    int iFirst = 0;
    int iEnd = 0;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey)) {
        if (MyFindResultByType(SOURCE_ID_LDAP) != nullptr) {
            // LDAP has been asked for this key already, so the buckets are no longer the result for any one key.
            MyForgetSearched();
        }
        return false;
    }
    std::list<ItemData> listDropped;
    m_page.Publish(strRawKey, MyNarrowRows(strKey, iFirst, iEnd, listDropped));
    MyMarkSearched(strKey);
    MyCallback(strKey, strRawKey);
    // Nobody waits for this part of the work, and nothing asks the filter before it is done.
    MyForgetRows(listDropped);
    return true;
}

int CWideseekAction::MyNarrowRows(const std::string& strKey, int iFirst, int iEnd, std::list<ItemData>& listDropped) {
    const CResultLock lock(m_csResult, ":MySearchFromResult----------- LOCK-----------------",
                           ":MySearchFromResult----------- UN LOCK-----------------");
    CPageCut cut(iFirst, iEnd);
    for (ResultData* pBucket : m_listResultData) {
        if (pBucket->iState != RESULT_STATE_DONE) {
            continue;
        }
        const ItemData* pLast = nullptr;
        bool bMatch = false;
        for (CRowWalk walk(pBucket->listItem, pBucket->places); walk.HasRow();) {
            const ItemData& row = walk.Row();
            if (row.IsBlank()) {
                walk.Keep();
                continue;
            }
            if (pLast == nullptr || !IsSameContact(*pLast, row)) {
                bMatch = IsMatch(row, strKey, m_iSearchMode);
            }
            pLast = &row;
            if (!bMatch) {
                walk.Drop(listDropped);
                continue;
            }
            if (cut.Offer(row)) {
                m_page.Append(row);
            }
            walk.Keep();
        }
    }
    return cut.GetTotal();
}

} // namespace NS_WS
