#include "app/Gui/Logic/Wideseek/WideseekAction.h"

#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/CommonAPI.h"

namespace NS_WS {

CWideseekAction::CWideseekAction()
    : m_pResultList(nullptr), m_iSearchMode(0), m_bTimerWaiting(false), m_timerCheck(0), m_pLastCallback(nullptr) {
    SetTypeId(TYPE_ID);
    SetCallBackThread(ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(
        "ThreadLocalContactSearch"));
    MyInit();
}

CWideseekAction::~CWideseekAction() {
    WithdrawMessages();
    MyFinal();
}

bool CWideseekAction::MyInit() {
    if (m_pResultList == nullptr) {
        m_pResultList = WS_NEW("app/Gui/Logic/Wideseek/WideseekAction") WideseekListData;
    }
    MyRefreshResult();
    return true;
}

bool CWideseekAction::MyFinal() {
    TrackedDelete(m_pResultList);
    m_pResultList = nullptr;
    const CLock lock(m_csWork);
    MyClearResult();
    return true;
}

// ---- handing over ----

CWideseekAction::CHandOver::CHandOver(CWideseekAction& action, NS_TA::CTaskActionCallbackBase* pCallback)
    : m_action(action) {
    m_action.m_csRequest.Lock();
    m_action.m_bFlag = false;
    m_action.m_bRead = true;
    m_action.m_requestNext.pCallback = pCallback;
    m_action.m_requestNext.bDropped = false;
    ++m_action.m_requestNext.uSerial;
}

CWideseekAction::CHandOver::~CHandOver() {
    m_action.m_csRequest.Unlock();
}

unsigned long long CWideseekAction::CHandOver::GetSerial() const {
    const CLock lock(m_action.m_csRequest);
    return m_action.m_requestNext.uSerial;
}

void CWideseekAction::SetKey(const std::string& strKey) {
    const CLock lock(m_csRequest);
    if (strKey != m_requestNext.strRawKey) {
        m_requestNext.strRawKey = strKey;
    }
    std::string strConverted = CommonAPI_StringConvert(strKey, STRING_CONVERT_SEARCH_KEY);
    if (strConverted != m_requestNext.strKey) {
        m_requestNext.strKey.swap(strConverted);
    }
}

void CWideseekAction::SetFromIndex(int iFromIndex) {
    const CLock lock(m_csRequest);
    if (m_pResultList != nullptr) {
        m_requestNext.iFromIndex = iFromIndex;
    }
}

void CWideseekAction::SetSearchCount(int iSearchCount) {
    const CLock lock(m_csRequest);
    if (m_pResultList != nullptr) {
        m_requestNext.iSearchCount = iSearchCount;
    }
}

int CWideseekAction::GetFromIndex() const {
    return m_pResultList != nullptr ? m_iFromIndex : 0;
}

int CWideseekAction::GetSearchCount() const {
    return m_pResultList != nullptr ? m_iSearchCount : 0;
}

void CWideseekAction::TakeBack(unsigned long long uSerial) {
    const CLock lock(m_csRequest);
    if (m_requestNext.uSerial == uSerial) {
        m_requestNext.pCallback = nullptr;
        m_requestNext.bDropped = true;
    }
}

void CWideseekAction::ResetKey() {
    const CLock lock(m_csRequest);
    m_strLastKey.clear();
    ++m_uResets;
}

void CWideseekAction::Detach(const NS_TA::CTaskActionCallbackBase* pCallback) {
    const CLock lock(m_csRequest);
    // A request that has lost its object has nobody for a late answer's page either: the object of the request before
    // it never asked for that page.
    if (m_pCallback == pCallback) {
        m_pCallback = nullptr;
        m_pLastCallback = nullptr;
    }
    if (m_pLastCallback == pCallback) {
        m_pLastCallback = nullptr;
    }
    if (m_requestNext.pCallback == pCallback) {
        m_requestNext.pCallback = nullptr;
        m_requestNext.bDropped = true;
    }
}

void CWideseekAction::Stop() {
    const CLock lock(m_csRequest);
    m_bStopped = true;
    m_pCallback = nullptr;
    m_pLastCallback = nullptr;
    m_requestNext.pCallback = nullptr;
}

WideseekListData CWideseekAction::GetResultData() const {
    const CLock lock(m_csPage);
    return m_pResultList != nullptr ? *m_pResultList : WideseekListData();
}

// ---- working ----

bool CWideseekAction::Exec() {
    const CLock lock(m_csWork);
    bool bRead = false;
    if (!MyTakeRequest(bRead)) {
        return true;
    }
    return bRead ? Read() : Write();
}

bool CWideseekAction::Read() {
    return ReadByKey(m_strKey, m_strRawKey);
}

bool CWideseekAction::Write() {
    return true;
}

bool CWideseekAction::ReadByKey(std::string strKey, std::string strRawKey) {
    MyEmptyPage();
    if (strKey.empty()) {
        return ReadEmptyByKey();
    }
    return ReadNonEmptyByKey(strKey, strRawKey);
}

bool CWideseekAction::ReadNonEmptyByKey(std::string strKey, std::string strRawKey) {
    std::string strLastKey;
    {
        const CLock lock(m_csRequest);
        if (m_pCallback != nullptr) {
            m_pLastCallback = m_pCallback;
        }
        strLastKey = m_strLastKey;
    }
    if (strKey == strLastKey) {
        return MyCopyResult(strKey, strRawKey);
    }
    m_iSearchMode = CommonAPI_IsSearchByT9(strKey) ? SEARCH_MODE_T9 : SEARCH_MODE_TEXT;
    if (MyIsSearchFromLast(strKey, strLastKey)) {
        MyReSearchLdap(strKey, strRawKey);
        return MySearchFromResult(strKey, strRawKey);
    }
    {
        const CLock lock(m_csRequest);
        m_uFilledAt = m_uResets;
        m_strLastKey = strKey;
    }
    return MyReSearch(strKey, strRawKey);
}

bool CWideseekAction::MyIsSearchFromLast(std::string strKey, std::string strLastKey) const {
    return !strLastKey.empty() && strKey.compare(0, strLastKey.size(), strLastKey) == 0;
}

bool CWideseekAction::MyTakeRequest(bool& bRead) {
    const CLock lock(m_csRequest);
    bRead = m_bRead;
    if (m_requestNext.uSerial == m_uSerial) {
        return m_pCallback != nullptr;
    }
    m_uSerial = m_requestNext.uSerial;
    m_pCallback = m_requestNext.pCallback;
    m_requestNext.pCallback = nullptr;
    if (m_requestNext.bDropped) {
        m_pLastCallback = nullptr;
    }
    m_strKey = m_requestNext.strKey;
    m_strRawKey = m_requestNext.strRawKey;
    m_iFromIndex = m_requestNext.iFromIndex;
    m_iSearchCount = m_requestNext.iSearchCount;
    return !m_bStopped;
}

bool CWideseekAction::MyIsCurrent(const std::string& strKey) const {
    const CLock lock(m_csRequest);
    return MyIsCurrentLocked(strKey);
}

bool CWideseekAction::MyIsCurrentLocked(const std::string& strKey) const {
    return !m_bStopped && m_requestNext.uSerial == m_uSerial && strKey == m_strKey;
}

bool CWideseekAction::MyHasCallback() const {
    const CLock lock(m_csRequest);
    return m_pCallback != nullptr;
}

bool CWideseekAction::MyIsStopped() const {
    const CLock lock(m_csRequest);
    return m_bStopped;
}

void CWideseekAction::MyMarkSearched(const std::string& strKey) {
    const CLock lock(m_csRequest);
    if (m_uFilledAt == m_uResets) {
        m_strLastKey = strKey;
    }
}

void CWideseekAction::MyForgetSearched() {
    const CLock lock(m_csRequest);
    m_strLastKey.clear();
}

} // namespace NS_WS
