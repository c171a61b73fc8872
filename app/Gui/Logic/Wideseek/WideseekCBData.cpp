#include "app/Gui/Logic/Wideseek/WideseekCBData.h"

#include "app/Gui/Logic/Wideseek/WideseekInternal.h"

WS_OPTIONAL_TYPE_INFO("_ZTIN5NS_TA11CTaskActionE");

namespace NS_WS {

CWideseekCBData::CWideseekCBData() : m_pResultList(nullptr) {
    SetTypeId(TYPE_ID);
    m_pResultList = WS_NEW("app/Gui/Logic/Wideseek/WideseekAction") WideseekListData;
}

CWideseekCBData::~CWideseekCBData() {
    WS_DELETE("app/Gui/Logic/Wideseek/WideseekAction", m_pResultList);
    m_pResultList = nullptr;
}

bool CWideseekCBData::Exec() {
    return true;
}

WideseekListData* CWideseekCBData::GetResultListPtr() {
    return m_pResultList;
}

WideseekListData CWideseekCBData::GetResultList() const {
    return WithoutException(WideseekListData(),
                            [this] { return m_pResultList != nullptr ? *m_pResultList : WideseekListData(); });
}

std::string CWideseekCBData::GetKey() const {
    return WithoutException(std::string(),
                            [this] { return m_pResultList != nullptr ? m_pResultList->strKey : std::string(); });
}

void CWideseekCBData::SetKey(const std::string& strKey) {
    WithoutException(false, [&] {
        if (m_pResultList != nullptr) {
            m_pResultList->strKey = strKey;
        }
        return true;
    });
}

int CWideseekCBData::GetFromIndex() const {
    return m_pResultList != nullptr ? m_pResultList->iFromIndex : -1;
}

void CWideseekCBData::SetFromIndex(int iFromIndex) {
    if (m_pResultList != nullptr) {
        m_pResultList->iFromIndex = iFromIndex;
    }
}

int CWideseekCBData::GetSearchCount() const {
    return m_pResultList != nullptr ? m_pResultList->iSearchCount : -1;
}

void CWideseekCBData::SetSearchCount(int iSearchCount) {
    if (m_pResultList != nullptr) {
        m_pResultList->iSearchCount = iSearchCount;
    }
}

int CWideseekCBData::GetTotalCount() const {
    return m_pResultList != nullptr ? m_pResultList->iTotalCount : -1;
}

void CWideseekCBData::SetTotalCount(int iTotalCount) {
    if (m_pResultList != nullptr) {
        m_pResultList->iTotalCount = iTotalCount;
    }
}

void CWideseekCBData::AppendResult(const WideseekItemData& item) {
    WithoutException(false, [&] {
        if (m_pResultList != nullptr) {
            m_pResultList->listItem.push_back(item);
        }
        return true;
    });
}

void CWideseekCBData::ResetResultList() {
    if (m_pResultList != nullptr) {
        m_pResultList->listItem.clear();
    }
}

} // namespace NS_WS
