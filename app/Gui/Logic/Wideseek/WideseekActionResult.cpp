// Buckets into pages: when a page can be sent, cutting it, sending it.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekSpareRows.h"
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
                MyAppendRow(page, item);
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
    // The work alone writes the page record, so it reads it without m_csPage.
    for (const WideseekItemData& row : m_pResultList->listItem) {
        AppendSpare(m_listSpare, pData->GetResultListPtr()->listItem) = row;
    }
    pData->SetFromIndex(m_pResultList->iFromIndex);
    pData->SetSearchCount(m_pResultList->iSearchCount);
    pData->SetTotalCount(m_pResultList->iTotalCount);
    pData->SetKey(strRawKey);
    pData->SetResultCode(0);
    const bool bSent = MySend(pData, strKey);
    Wideseek_DestroySearchCBAction(pData);
    PrepareSpare(m_listSpare, m_pResultList->listItem);
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

void CWideseekAction::MyAppendRow(WideseekListData& page, const ItemData& item) {
    WideseekItemData& row = AppendSpare(m_listSpare, page.listItem);
    row.strName = item.strName;
    row.strNumber = item.strNumber;
    row.strExtra1 = item.strExtra1;
    row.strExtra2 = item.strExtra2;
    row.iExtra = item.iExtra;
}

void CWideseekAction::MyEmptyPage() {
    std::list<WideseekItemData> listItem;
    {
        const CLock lock(m_csPage);
        if (m_pResultList != nullptr) {
            m_pResultList->listItem.swap(listItem);
        }
    }
    KeepSpare(m_listSpare, listItem);
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
