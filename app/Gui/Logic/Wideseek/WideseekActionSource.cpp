// Asking the sources, and merging what they offer into their buckets.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekFilterOrder.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"
#include "platform/AppLog.h"
#include "platform/Directory.h"
#include "platform/Presence.h"

namespace NS_WS {

namespace {

constexpr const char* SOURCE_ID_UC = "BroadSoft_UC_search";

// The sources that answer at once, and whom to ask. The network directory is the BroadSoft directory under another id.
struct DirectorySource {
    const char* pszId;
    bool (*pQuery)(WideseekItemListData*);
};

constexpr DirectorySource DIRECTORY_SOURCES[] = {
    {"local_directory_search", Directory_LocalDirWideseek}, {"remote_directory_search", RemoteDir_Wideseek},
    {"calllog_search", Directory_LocalLogWideseek},         {"BroadSoft_directory_search", BSFTDir_Wideseek},
    {"Network_directory_search", BSFTDir_Wideseek},
};

constexpr int LDAP_MAX_COUNT = 1000;

} // namespace

// ---- buckets ----

bool CWideseekAction::MyRefreshResult() {
    WideseekCfgListData list;
    MyMakeBuckets(list);
    return true;
}

bool CWideseekAction::MyMakeBuckets(WideseekCfgListData& list) {
    MyClearResult();
    const bool bSources = CWideseekController::LendEnableCfgList(&list);
    for (const WideseekCfgItemData& item : list.listItem) {
        if (item.strIdName.empty()) {
            continue;
        }
        // In the list before it is filled: what is in the list is given back, whatever becomes of the rest.
        m_listResultData.push_back(nullptr);
        ResultData* pBucket = WS_NEW("app/Gui/Logic/Wideseek/WideseekAction") ResultData;
        if (pBucket == nullptr) {
            m_listResultData.pop_back();
            // The source is not asked, so what is found is no key's whole result.
            ResetKey();
            continue;
        }
        m_listResultData.back() = pBucket;
        pBucket->strType = item.strIdName;
        pBucket->iState = RESULT_STATE_PENDING;
    }
    return bSources;
}

bool CWideseekAction::MyClearResult() {
    {
        const CResultLock lock(m_csResult, "MyClearResult-----------LOCK-----------------",
                               "MyClearResult----------- UN LOCK-----------------");
        while (!m_listResultData.empty()) {
            WS_DELETE("app/Gui/Logic/Wideseek/WideseekAction", m_listResultData.front());
            m_listResultData.pop_front();
        }
    }
    m_walk.Clear();
    return true;
}

ResultData* CWideseekAction::MyFindResultByType(const std::string& strType) {
    for (ResultData* pBucket : m_listResultData) {
        if (pBucket->strType == strType) {
            return pBucket;
        }
    }
    return nullptr;
}

// ---- questions ----

bool CWideseekAction::MyReSearchByType(const std::string& strType, std::string strKey, std::string strRawKey) {
    for (const DirectorySource& source : DIRECTORY_SOURCES) {
        if (strType == source.pszId) {
            return MyReSearchDirectory(strType, strKey, source.pQuery);
        }
    }
    if (strType == SOURCE_ID_LDAP) {
        return MyReSearchLdap(strKey, strRawKey);
    }
    return strType == SOURCE_ID_UC && MyReSearchUC(strKey, strRawKey);
}

bool CWideseekAction::MyReSearchDirectory(const std::string& strType, const std::string& strKey,
                                          bool (*pQuery)(WideseekItemListData*)) {
    ResultData* pBucket = MyFindResultByType(strType);
    if (pBucket == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    pBucket->iState = RESULT_STATE_SEARCHING;
    WideseekItemListData data;
    data.strKey = strKey;
    const bool bFound = pQuery(&data);
    MyInsertResult(pBucket, data.listResult);
    pBucket->iState = bFound ? RESULT_STATE_DONE : RESULT_STATE_FAILED;
    return bFound;
}

bool CWideseekAction::MyReSearchLdap(std::string strKey, std::string /*strRawKey*/) {
    ResultData* pBucket = MyFindResultByType(SOURCE_ID_LDAP);
    if (pBucket == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    // The coming answer must not find its own former rows in the filter.
    std::list<ItemData> listDropped;
    pBucket->places.Forget();
    pBucket->uBlank = 0;
    listDropped.swap(pBucket->listItem);
    MyForgetRows(listDropped);
    pBucket->iState = RESULT_STATE_SEARCHING;
    return Ldap_SearchAsync(strKey, GetFromIndex(), LDAP_MAX_COUNT, this, FindSearchThread()) != 0;
}

bool CWideseekAction::MyReSearchUC(std::string strKey, const std::string& /*strRawKey*/) {
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "CWideseekAction::MyReSearchUC\n");
    ResultData* pBucket = MyFindResultByType(SOURCE_ID_UC);
    if (pBucket == nullptr) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    pBucket->iState = RESULT_STATE_SEARCHING;
    ContactBuddyListData buddies;
    int iState = 1;
    CPresenceContactManager* pManager = CPresenceContactManager::GetInstance();
    const bool bFound =
        pManager != nullptr && pManager->GetListByGroupId(&buddies, iState, 0, strKey, ATTR_TYPE_SEARCH);
    std::list<ItemData> listNew;
    for (const int iContactId : buddies.listContactId) {
        PresenceInfo info;
        info.iContactId = iContactId;
        pManager = CPresenceContactManager::GetInstance();
        if (pManager != nullptr && pManager->GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0) != 0) {
            AppendBuddy(listNew, info);
        }
    }
    MyMergeRows(*pBucket, listNew);
    pBucket->iState = bFound ? RESULT_STATE_DONE : RESULT_STATE_FAILED;
    return bFound;
}

// ---- merging ----

void CWideseekAction::MyInsertResult(ResultData* pBucket, OxList<DirectorySearchData>& hitList) {
    if (pBucket == nullptr) {
        return;
    }
    std::list<ItemData> listNew;
    for (auto* pNode = hitList.Begin(); pNode != hitList.End(); pNode = pNode->pNext) {
        AppendContact(listNew, pNode->value);
    }
    MyMergeRows(*pBucket, listNew);
}

// The duplicate rule: for each row the filter is asked, and what it does not hold is recorded there, if only later, and
// appended.
void CWideseekAction::MyMergeRows(ResultData& bucket, std::list<ItemData>& listNew) {
    const bool bWaited = MyHasCallback();
    for (const FilterPlace& place : InFilterOrder(listNew)) {
        if (MyIsFilterExist(*place.itRow)) {
            listNew.erase(place.itRow);
            continue;
        }
        bucket.uBlank += place.itRow->IsBlank() ? 1U : 0U;
        if (bWaited) {
            m_walk.Note(place.itRow);
        } else {
            MyAddFilter(*place.itRow);
        }
    }
    bucket.places.Forget();
    bucket.listItem.splice(bucket.listItem.end(), listNew);
}

bool CWideseekAction::MyIsFilterExist(const ItemData& item) {
    return m_walk.Holds(item);
}

bool CWideseekAction::MyAddFilter(const ItemData& item) {
    return m_walk.Add(item);
}

bool CWideseekAction::MyRemoveFilter(const ItemData& item) {
    return m_walk.Remove(item);
}

void CWideseekAction::MyForgetRows(const std::list<ItemData>& listDropped) {
    if (listDropped.size() <= m_mapFilter.size() / 3 * 2) {
        for (const FilterPlace& place : InFilterOrder(listDropped)) {
            MyRemoveFilter(*place.itRow);
        }
        return;
    }
    // To begin anew with the few that are left is less work.
    m_walk.Clear();
    for (const ResultData* pBucket : m_listResultData) {
        for (const FilterPlace& place : InFilterOrder(pBucket->listItem)) {
            MyAddFilter(*place.itRow);
        }
    }
}

} // namespace NS_WS
