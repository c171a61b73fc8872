// Buckets into pages: when a page can be sent, cutting it, narrowing, sending it.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/AppLog.h"
#include "platform/CommonAPI.h"

#include <iterator>
#include <utility>

namespace NS_WS {

namespace {

constexpr int MAX_INDEX = 0x00ffffff;
constexpr int CHECK_PERIOD_MS = 100;
constexpr unsigned int MSG_THREAD_TIMER = 0x8113;

void AppendPageRow(std::list<WideseekItemData>& listPage, const CWideseekAction::ItemData& item) {
    WideseekItemData& row = listPage.emplace_back();
    row.strName = item.strName;
    row.strNumber = item.strNumber;
    row.strExtra1 = item.strExtra1;
    row.strExtra2 = item.strExtra2;
    row.iExtra = item.iExtra;
}

// Rows lie far apart in memory. What a match looks at of the next one is on its way while this one is matched.
void FetchAhead(const CWideseekAction::ItemData& item) {
    __builtin_prefetch(&item.strName);
    __builtin_prefetch(&item.strNumber2);
    __builtin_prefetch(&item.strNameKey);
}

// Whether two rows of one source have the same name and the same numbers, in the orders in which a contact is split into
// rows. What matches one of them then matches the other.
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

bool CWideseekAction::MyRefreshResult() {
    WideseekCfgListData list;
    MyRefreshResult(list);
    return true;
}

bool CWideseekAction::MyRefreshResult(WideseekCfgListData& list) {
    MyClearResult();
    const bool bSources = CWideseekController::LendEnableCfgList(&list);
    for (const WideseekCfgItemData& item : list.listItem) {
        if (item.strIdName.empty()) {
            continue;
        }
        ResultData* pBucket = WS_NEW("app/Gui/Logic/Wideseek/WideseekAction") ResultData;
        if (pBucket != nullptr) {
            pBucket->strType = item.strIdName;
            pBucket->iState = RESULT_STATE_PENDING;
            m_listResultData.push_back(pBucket);
        } else {
            // The source is not asked, so what is found is no key's whole result.
            ResetKey();
        }
    }
    return bSources;
}

bool CWideseekAction::MyClearResult() {
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "MyClearResult-----------LOCK-----------------\n");
    m_csResult.Lock();
    while (!m_listResultData.empty()) {
        TrackedDelete(m_listResultData.front());
        m_listResultData.pop_front();
    }
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "MyClearResult----------- UN LOCK-----------------\n");
    m_csResult.Unlock();
    MyClearFilter();
    return true;
}

bool CWideseekAction::MyCheckResult(std::string strKey, std::string strRawKey) {
    if (!MyHasCallback()) {
        return false;
    }
    long long llRows = 0;
    bool bAllFinished = true;
    bool bSearching = false;
    for (const ResultData* pBucket : m_listResultData) {
        if (pBucket->iState == RESULT_STATE_SEARCHING) {
            bSearching = true;
            break;
        }
        if (pBucket->iState == RESULT_STATE_PENDING) {
            bAllFinished = false;
        }
        llRows += static_cast<long long>(pBucket->listItem.size());
    }
    if (bAllFinished && !bSearching) {
        return MyCopyResult(strKey, strRawKey);
    }
    long long llTarget = static_cast<long long>(GetFromIndex()) + GetSearchCount();
    if (llTarget == 0) {
        llTarget = MAX_INDEX;
    }
    if (llTarget <= llRows) {
        MyCopyResult(strKey, strRawKey);
    } else if (bSearching && !m_bTimerWaiting) {
        MyArmTimer();
    }
    return true;
}

void CWideseekAction::MyArmTimer() {
    if (m_timerCheck.IsTimerRuning()) {
        m_timerCheck.KillTimer();
    }
    using Handler = int (ETL_MsgQueueHelper::chMsgProcesser::*)(ETL_MsgQueueHelper::msgObject&);
    m_timerCheck.SetTimer(CHECK_PERIOD_MS, nullptr, this, static_cast<Handler>(&CWideseekAction::MyDealTimeoutMessage));
    m_bTimerWaiting = true;
}

int CWideseekAction::OnMessage(ETL_MsgQueueHelper::msgObject& msg) {
    return msg.uMessageId == MSG_THREAD_TIMER ? MyDealTimeoutMessage(msg) : 0;
}

int CWideseekAction::MyDealTimeoutMessage(ETL_MsgQueueHelper::msgObject& /*msg*/) {
    const CLock lock(m_csWork);
    if (m_timerCheck.IsTimerRuning()) {
        m_timerCheck.KillTimer();
    }
    if (m_strKey.empty()) {
        // The search that armed the timer has been cleared away; the recent calls that took its place stay.
        return 0;
    }
    std::list<ResultData*> listSearching;
    for (auto it = m_listResultData.begin(); it != m_listResultData.end();) {
        const auto itBucket = it++;
        if ((*itBucket)->iState == RESULT_STATE_SEARCHING) {
            listSearching.splice(listSearching.end(), m_listResultData, itBucket);
        }
    }
    m_listResultData.splice(m_listResultData.end(), listSearching);
    return MyCopyResult(m_strKey, m_strRawKey) ? 1 : 0;
}

bool CWideseekAction::MyCopyResult(std::string strKey, std::string strRawKey) {
    MyEmptyPage();
    int iFirst = -1;
    int iEnd = -1;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey)) {
        return false;
    }
    WideseekListData page;
    int iIndex = -1;
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "MyCopyResult-----------LOCK-----------------\n");
    m_csResult.Lock();
    for (const ResultData* pBucket : m_listResultData) {
        if (pBucket->iState != RESULT_STATE_DONE) {
            continue;
        }
        for (const ItemData& item : pBucket->listItem) {
            if (item.IsBlank()) {
                continue;
            }
            ++iIndex;
            if (iFirst <= iIndex && iIndex < iEnd) {
                AppendPageRow(page.listItem, item);
            }
        }
    }
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "CWideseekAction::MyCopyResult----------- UN LOCK-----------------\n");
    m_csResult.Unlock();
    page.iTotalCount = iIndex + 1;
    page.strKey = strRawKey;
    MySetPage(page);
    MyMarkSearched(strKey);
    MyCallback(strKey, strRawKey);
    return true;
}

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
                AppendPageRow(page.listItem, *itRow);
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

bool CWideseekAction::MyCallback(std::string strKey, std::string strRawKey) {
    int iFirst = -1;
    int iEnd = -1;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey) || !MyHasCallback()) {
        return false;
    }
    CWideseekCBData* pData = Wideseek_CreateSearchCBAction();
    if (pData == nullptr || pData->GetResultListPtr() == nullptr || m_pResultList == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        Wideseek_DestroySearchCBAction(pData);
        return false;
    }
    {
        const CLock lock(m_csPage);
        pData->GetResultListPtr()->listItem = m_pResultList->listItem;
        pData->SetFromIndex(m_pResultList->iFromIndex);
        pData->SetSearchCount(m_pResultList->iSearchCount);
        pData->SetTotalCount(m_pResultList->iTotalCount);
    }
    pData->SetKey(strRawKey);
    pData->SetResultCode(0);
    const bool bSent = MySend(pData, strKey);
    Wideseek_DestroySearchCBAction(pData);
    return bSent;
}

bool CWideseekAction::MySend(CWideseekCBData* pData, const std::string& strKey) {
    // Posting under the lock makes a detach wait for it, and keeps a newer request from coming between the last look at
    // what is current and the end of the callback object.
    const CLock lock(m_csRequest);
    if (!MyIsCurrentLocked(strKey) || m_pCallback == nullptr) {
        return false;
    }
    m_pCallback->SendMessageToCallingThread(pData);
    m_pCallback = nullptr;
    return true;
}

void CWideseekAction::MyRestoreCallback() {
    const CLock lock(m_csRequest);
    if (!m_bStopped && m_requestNext.uSerial == m_uSerial) {
        m_pCallback = m_pLastCallback;
    }
}

bool CWideseekAction::MyGetPageBounds(int& iFirst, int& iEnd) {
    if (CommonAPI_GetFromAndToIndex(&iFirst, &iEnd, GetFromIndex(), GetSearchCount(), MAX_INDEX) == 0) {
        SetResultCode(RESULT_CODE_RANGE);
        return false;
    }
    return true;
}

void CWideseekAction::MyEmptyPage() {
    std::list<WideseekItemData> listItem;
    const CLock lock(m_csPage);
    if (m_pResultList != nullptr) {
        m_pResultList->listItem.swap(listItem);
    }
}

void CWideseekAction::MySetPage(WideseekListData& page) {
    page.iFromIndex = GetFromIndex();
    page.iSearchCount = GetSearchCount();
    const CLock lock(m_csPage);
    if (m_pResultList != nullptr) {
        std::swap(*m_pResultList, page);
    }
}

} // namespace NS_WS
