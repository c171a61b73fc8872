// Requests change hands: callers hand them over, the work takes the newest, and what callers take back is forgotten.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/CommonAPI.h"

#include <utility>

namespace NS_WS {

void CWideseekRequest::SetKey(const std::string& strKey) {
    m_strRawKey = strKey;
    m_strKey = CommonAPI_StringConvert(strKey, STRING_CONVERT_SEARCH_KEY);
}

// ---- callers ----

unsigned long long CWideseekAction::HandOver(CWideseekRequest request) {
    const CLock lock(m_csRequest);
    m_bFlag = false;
    m_bRead = true;
    std::swap(m_requestNext, request);
    return ++m_uSerialNext;
}

void CWideseekAction::TakeBack(unsigned long long uSerial) {
    const CLock lock(m_csRequest);
    if (m_uSerialNext == uSerial) {
        m_requestNext.ForgetCallback();
    }
}

void CWideseekAction::ResetKey() {
    const CLock lock(m_csRequest);
    m_strLastKey.clear();
    ++m_uResets;
}

void CWideseekAction::Detach(const NS_TA::CTaskActionCallbackBase* pCallback) {
    const CLock lock(m_csRequest);
    if (m_pCallback == pCallback) {
        m_pCallback = nullptr;
    }
    if (m_pLastCallback == pCallback) {
        m_pLastCallback = nullptr;
    }
    if (m_requestNext.GetCallback() == pCallback) {
        m_requestNext.ForgetCallback();
    }
}

void CWideseekAction::Stop() {
    const CLock lock(m_csRequest);
    m_bStopped = true;
    m_pCallback = nullptr;
    m_pLastCallback = nullptr;
    m_requestNext.ForgetCallback();
}

WideseekListData CWideseekAction::GetResultData() const {
    return WithoutException(WideseekListData(), [this] { return m_page.Copy(); });
}

// ---- the work ----

bool CWideseekAction::MyTakeRequest(bool& bRead) noexcept {
    const CLock lock(m_csRequest);
    bRead = m_bRead;
    if (m_uSerialNext == m_uSerial) {
        return m_pCallback != nullptr;
    }
    m_uSerial = m_uSerialNext;
    m_pCallback = m_requestNext.GetCallback();
    m_requestNext.ForgetCallback();
    m_requestNext.SwapKeys(m_strKey, m_strRawKey);
    m_page.SetPosition(m_requestNext.GetFromIndex(), m_requestNext.GetSearchCount());
    return !m_bStopped;
}

bool CWideseekAction::MyIsCurrent(const std::string& strKey) const {
    const CLock lock(m_csRequest);
    return MyIsCurrentLocked(strKey);
}

bool CWideseekAction::MyIsCurrentLocked(const std::string& strKey) const {
    return !m_bStopped && m_uSerialNext == m_uSerial && strKey == m_strKey;
}

bool CWideseekAction::MyHasCallback() const {
    const CLock lock(m_csRequest);
    return m_pCallback != nullptr;
}

void CWideseekAction::MyKeepCallback() {
    const CLock lock(m_csRequest);
    if (m_pCallback != nullptr) {
        m_pLastCallback = m_pCallback;
    }
}

void CWideseekAction::MyRestoreCallback() {
    const CLock lock(m_csRequest);
    if (!m_bStopped && m_uSerialNext == m_uSerial) {
        m_pCallback = m_pLastCallback;
    }
}

bool CWideseekAction::MyIsStopped() const {
    const CLock lock(m_csRequest);
    return m_bStopped;
}

std::string CWideseekAction::MySearchedKey() const {
    const CLock lock(m_csRequest);
    return m_strLastKey;
}

void CWideseekAction::MyBeginSearched(const std::string& strKey) {
    const CLock lock(m_csRequest);
    m_uFilledAt = m_uResets;
    m_strLastKey = strKey;
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
