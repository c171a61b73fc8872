// Narrowing: what is left of the rows held when the key grows.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/AppLog.h"
#include "platform/CommonAPI.h"

namespace NS_WS {

namespace {

// Rows lie far apart in memory. What a match looks at of the next one is on its way while this one is matched.
void FetchAhead(const CWideseekAction::ItemData& item) {
    __builtin_prefetch(&item.strName);
    __builtin_prefetch(&item.strNumber2);
    __builtin_prefetch(&item.strNameKey);
}

// Whether two rows of one source have the same name and the same numbers, in the orders in which a contact is split
// into rows. What matches one of them then matches the other.
bool IsSameContact(const CWideseekAction::ItemData& a, const CWideseekAction::ItemData& b) {
    if (a.strName != b.strName) {
        return false;
    }
    return (a.strNumber == b.strNumber2 && a.strNumber2 == b.strNumber && a.strNumber3 == b.strNumber3) ||
           (a.strNumber == b.strNumber3 && a.strNumber2 == b.strNumber2 && a.strNumber3 == b.strNumber) ||
           (a.strNumber == b.strNumber2 && a.strNumber2 == b.strNumber3 && a.strNumber3 == b.strNumber);
}

bool IsMatch(const std::string& strField, const std::string& strKey) {
    return CommonAPI_StringMatch(strField, strKey, false, STRING_MATCH_CONTAINS) != 0;
}

bool IsNumberMatch(const std::string& strNumber, const std::string& strKey) {
    static const std::string strPlus("+");
    return IsMatch(CommonAPI_TrimString(strNumber, strPlus, TRIM_TYPE_BOTH_ENDS), strKey);
}

} // namespace

bool CWideseekAction::MySearchFromResult(std::string strKey, std::string strRawKey) {
    int iFirst = -1;
    int iEnd = -1;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey)) {
        // LDAP has been asked for this key already, so the buckets are no longer the result for any one key.
        MyForgetSearched();
        return false;
    }
    WideseekListData page;
    std::list<ItemData> listDropped;
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, ":MySearchFromResult----------- LOCK-----------------\n");
    m_csResult.Lock();
    MyNarrowRows(strKey, iFirst, iEnd, page, listDropped);
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, ":MySearchFromResult----------- UN LOCK-----------------\n");
    m_csResult.Unlock();
    page.strKey = strRawKey;
    MySetPage(page);
    MyMarkSearched(strKey);
    MyCallback(strKey, strRawKey);
    // Nobody waits for this part of the work, and nothing asks the filter before it is done.
    MyRemoveFilter(listDropped);
    return true;
}

void CWideseekAction::MyNarrowRows(const std::string& strKey, int iFirst, int iEnd, WideseekListData& page,
                                   std::list<ItemData>& listDropped) {
    int iIndex = -1;
    for (ResultData* pBucket : m_listResultData) {
        if (pBucket->iState != RESULT_STATE_DONE) {
            continue;
        }
        const ItemData* pLast = nullptr;
        bool bMatch = false;
        for (auto it = pBucket->listItem.begin(); it != pBucket->listItem.end();) {
            const auto itRow = it++;
            if (it != pBucket->listItem.end()) {
                FetchAhead(*it);
            }
            if (itRow->IsBlank()) {
                continue;
            }
            if (pLast == nullptr || !IsSameContact(*pLast, *itRow)) {
                bMatch = MyIsMatch(*itRow, strKey);
            }
            pLast = &*itRow;
            if (!bMatch) {
                listDropped.splice(listDropped.end(), pBucket->listItem, itRow);
                continue;
            }
            ++iIndex;
            if (iFirst <= iIndex && iIndex < iEnd) {
                MyAppendRow(page, *itRow);
            }
        }
    }
    page.iTotalCount = iIndex + 1;
}

bool CWideseekAction::MyIsMatch(const ItemData& item, const std::string& strKey) const {
    switch (m_iSearchMode) {
    case SEARCH_MODE_T9:
        return IsNumberMatch(item.strNumber, strKey) || IsNumberMatch(item.strNumber2, strKey) ||
               IsNumberMatch(item.strNumber3, strKey) || IsMatch(item.strNameKey, strKey);
    case SEARCH_MODE_TEXT:
        return IsMatch(item.strName, strKey);
    default:
        return false;
    }
}

} // namespace NS_WS
