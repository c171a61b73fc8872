#include "app/Gui/Logic/Wideseek/WideseekAction.h"

#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"
#include "platform/CommonAPI.h"

WS_OPTIONAL_TYPE_INFO("_ZTIN5NS_TA23CTaskActionCallbackBaseE");
WS_OPTIONAL_TYPE_INFO("_ZTIN5NS_TA11CTaskActionE");

namespace NS_WS {

namespace {

constexpr int CHECK_PERIOD_MS = 100;

} // namespace

CWideseekAction::CWideseekAction()
    : m_iSearchMode(0), m_bTimerWaiting(false), m_timerCheck(0), m_pLastCallback(nullptr), m_walk(m_mapFilter),
      m_uSerialNext(0), m_uSerial(0), m_uResets(0), m_uFilledAt(0), m_uArmings(0), m_bStopped(false) {
    SetTypeId(TYPE_ID);
    SetCallBackThread(FindSearchThread());
    MyInit();
}

CWideseekAction::~CWideseekAction() {
    WithdrawMessages();
    MyFinal();
}

bool CWideseekAction::MyInit() {
    m_page.Init();
    try {
        MyRefreshResult();
    } catch (...) {
        // The first full search makes its buckets itself.
        MyClearResult();
    }
    return true;
}

bool CWideseekAction::MyFinal() {
    m_page.Final();
    const CLock lock(m_csWork);
    MyClearResult();
    return true;
}

// ---- a request ----

bool CWideseekAction::Exec() {
    const CLock lock(m_csWork);
    bool bRead = false;
    if (!MyTakeRequest(bRead)) {
        return true;
    }
    try {
        return bRead ? Read() : Write();
    } catch (...) {
        MyGiveUp();
        return false;
    }
}

void CWideseekAction::MyGiveUp() noexcept {
    MyKillTimer();
    MyClearResult();
    ResetKey();
    m_page.Begin();
    SetResultCode(RESULT_CODE_MISSING);
}

bool CWideseekAction::Read() {
    return ReadByKey(m_strKey, m_strRawKey);
}

bool CWideseekAction::Write() {
    return true;
}

bool CWideseekAction::ReadByKey(std::string strKey, std::string strRawKey) {
    m_page.Init();
    m_page.Begin();
    if (strKey.empty()) {
        return ReadEmptyByKey();
    }
    return ReadNonEmptyByKey(strKey, strRawKey);
}

bool CWideseekAction::ReadNonEmptyByKey(std::string strKey, std::string strRawKey) {
    MyKeepCallback();
    const std::string strLastKey = MySearchedKey();
    if (strKey == strLastKey) {
        return MyCopyResult(strKey, strRawKey);
    }
    m_iSearchMode = SearchModeOf(strKey);
    if (MyIsSearchFromLast(strKey, strLastKey)) {
        MyReSearchLdap(strKey, strRawKey);
        return MySearchFromResult(strKey, strRawKey);
    }
    MyBeginSearched(strKey);
    return MyReSearch(strKey, strRawKey);
}

bool CWideseekAction::MyIsSearchFromLast(std::string strKey, std::string strLastKey) const {
    return !strLastKey.empty() && strKey.compare(0, strLastKey.size(), strLastKey) == 0;
}

bool CWideseekAction::MyReSearch(std::string strKey, std::string strRawKey) {
    // One list for the buckets and for the questions: a bucket that a reload in between leaves unasked would never
    // finish.
    WideseekCfgListData list;
    const bool bSources = MyMakeBuckets(list);
    m_bTimerWaiting = false;
    if (!MyIsCurrent(strKey)) {
        // The buckets are empty, so the newer request must not be taken for a repeat of this one.
        MyForgetSearched();
        return false;
    }
    if (!bSources) {
        return true;
    }
    for (const WideseekCfgItemData& item : list.listItem) {
        if (MyIsStopped()) {
            return true;
        }
        MyReSearchByType(item.strIdName, strKey, strRawKey);
        MyFinishMerge(strKey, strRawKey);
    }
    if (list.listItem.empty()) {
        MyCheckResult(strKey, strRawKey);
    }
    return true;
}

// ---- is its page ready? ----

void CWideseekAction::MyFinishMerge(const std::string& strKey, const std::string& strRawKey) {
    MyCheckResult(strKey, strRawKey);
    m_walk.AddNoted();
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
    MyKillTimer();
    using Handler = int (ETL_MsgQueueHelper::chMsgProcesser::*)(ETL_MsgQueueHelper::msgObject&);
    m_bTimerWaiting = m_timerCheck.SetTimer(CHECK_PERIOD_MS, nullptr, this,
                                            static_cast<Handler>(&CWideseekAction::MyDealTimeoutMessage));
}

void CWideseekAction::MyKillTimer() {
    {
        const CLock lock(m_csRequest);
        ++m_uArmings;
    }
    if (m_timerCheck.IsTimerRuning()) {
        m_timerCheck.KillTimer();
    }
}

unsigned int CWideseekAction::MyArmings() const {
    const CLock lock(m_csRequest);
    return m_uArmings;
}

// ---- what comes later: the timer, and LDAP's answer ----

int CWideseekAction::OnMessage(ETL_MsgQueueHelper::msgObject& msg) {
    return msg.uMessageId == ETL_MsgQueueHelper::MSG_THREAD_TIMER ? MyDealTimeoutMessage(msg) : 0;
}

int CWideseekAction::MyDealTimeoutMessage(ETL_MsgQueueHelper::msgObject& /*msg*/) {
    const unsigned int uArmings = MyArmings();
    const CLock lock(m_csWork);
    if (uArmings != MyArmings()) {
        // While this expiry waited for the work, a newer search armed the timer for itself.
        return 0;
    }
    MyKillTimer();
    try {
        return MyDealTimeout() ? 1 : 0;
    } catch (...) {
        MyGiveUp();
        return 0;
    }
}

bool CWideseekAction::MyDealTimeout() {
    if (m_strKey.empty()) {
        // The search that armed the timer has been cleared away; the recent calls that took its place stay.
        return false;
    }
    std::list<ResultData*> listSearching;
    for (auto it = m_listResultData.begin(); it != m_listResultData.end();) {
        const auto itBucket = it++;
        if ((*itBucket)->iState == RESULT_STATE_SEARCHING) {
            listSearching.splice(listSearching.end(), m_listResultData, itBucket);
        }
    }
    m_listResultData.splice(m_listResultData.end(), listSearching);
    return MyCopyResult(m_strKey, m_strRawKey);
}

void CWideseekAction::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
    if (pAction == nullptr || pAction->GetTypeId() != NS_TA::TASK_TYPE_LDAP) {
        return;
    }
    const CLock lock(m_csWork);
    try {
        OnTaskActionCallbackLdap(static_cast<NS_TA::CLdapAction*>(pAction));
    } catch (...) {
        MyGiveUp();
    }
}

void CWideseekAction::OnTaskActionCallbackLdap(NS_TA::CLdapAction* pAction) {
    if (pAction == nullptr) {
        return;
    }
    ResultData* pBucket = MyFindResultByType(SOURCE_ID_LDAP);
    if (pBucket == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        return;
    }
    const std::string strConverted = CommonAPI_StringConvert(pAction->GetKey(), STRING_CONVERT_SEARCH_KEY);
    if (pAction->GetResultCode() != 0 || strConverted != m_strKey) {
        pBucket->iState = RESULT_STATE_FAILED;
        return;
    }
    std::list<ItemData> listNew;
    for (const NS_TA::LdapResultItem& answer : pAction->GetResultList()) {
        AppendAnswer(listNew, answer);
    }
    MyMergeRows(*pBucket, listNew);
    MyRestoreCallback();
    pBucket->iState = RESULT_STATE_DONE;
    MyFinishMerge(pAction->GetKey(), strConverted);
}

} // namespace NS_WS
