// Asking the sources, and LDAP's late answers.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "platform/AppLog.h"
#include "platform/CommonAPI.h"
#include "platform/Directory.h"
#include "platform/Presence.h"

#include <array>
#include <cstddef>

namespace NS_WS {

namespace {

constexpr const char* SOURCE_ID_LOCAL = "local_directory_search";
constexpr const char* SOURCE_ID_CALLLOG = "calllog_search";
constexpr const char* SOURCE_ID_REMOTE = "remote_directory_search";
constexpr const char* SOURCE_ID_BST = "BroadSoft_directory_search";
constexpr const char* SOURCE_ID_NETWORK = "Network_directory_search";
constexpr const char* SOURCE_ID_UC = "BroadSoft_UC_search";

constexpr int LDAP_MAX_COUNT = 1000;
constexpr int LDAP_ACTION_TYPE_ID = 3;
constexpr int ATTRIBUTE_TYPE_PHONE = 2;
constexpr std::size_t MAX_BUDDY_NUMBERS = 3;

} // namespace

bool CWideseekAction::MyReSearch(std::string strKey, std::string strRawKey) {
    // One list for the buckets and for the questions: a bucket that a reload in between leaves unasked would never
    // finish.
    WideseekCfgListData list;
    const bool bSources = MyRefreshResult(list);
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
        MyCheckResult(strKey, strRawKey);
    }
    if (list.listItem.empty()) {
        MyCheckResult(strKey, strRawKey);
    }
    return true;
}

bool CWideseekAction::MyReSearchByType(const std::string& strType, std::string strKey, std::string strRawKey) {
    if (strType == SOURCE_ID_LOCAL) {
        return MyReSearchLocal(strKey, strRawKey);
    }
    if (strType == SOURCE_ID_REMOTE) {
        return MyReSearchRemote(strKey, strRawKey);
    }
    if (strType == SOURCE_ID_LDAP) {
        return MyReSearchLdap(strKey, strRawKey);
    }
    if (strType == SOURCE_ID_CALLLOG) {
        return MyReSearchCalllog(strKey, strRawKey);
    }
    if (strType == SOURCE_ID_BST || strType == SOURCE_ID_NETWORK) {
        return MyReSearchBst(strKey, strRawKey, strType);
    }
    if (strType == SOURCE_ID_UC) {
        return MyReSearchUC(strKey, strRawKey);
    }
    return false;
}

bool CWideseekAction::MyReSearchLocal(std::string strKey, std::string /*strRawKey*/) {
    return MyReSearchDirectory(SOURCE_ID_LOCAL, strKey, Directory_LocalDirWideseek);
}

bool CWideseekAction::MyReSearchRemote(std::string strKey, std::string /*strRawKey*/) {
    return MyReSearchDirectory(SOURCE_ID_REMOTE, strKey, RemoteDir_Wideseek);
}

bool CWideseekAction::MyReSearchCalllog(std::string strKey, std::string /*strRawKey*/) {
    return MyReSearchDirectory(SOURCE_ID_CALLLOG, strKey, Directory_LocalLogWideseek);
}

bool CWideseekAction::MyReSearchBst(std::string strKey, std::string /*strRawKey*/, std::string strType) {
    return MyReSearchDirectory(strType, strKey, BSFTDir_Wideseek);
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
    listDropped.swap(pBucket->listItem);
    MyRemoveFilter(listDropped);
    pBucket->iState = RESULT_STATE_SEARCHING;
    void* pThread = ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(
        "ThreadLocalContactSearch");
    return Ldap_SearchAsync(strKey, GetFromIndex(), LDAP_MAX_COUNT, this, pThread) != 0;
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
            MyAppendBuddy(listNew, info);
        }
    }
    MyMergeRows(*pBucket, listNew);
    pBucket->iState = bFound ? RESULT_STATE_DONE : RESULT_STATE_FAILED;
    return bFound;
}

void CWideseekAction::MyAppendBuddy(std::list<ItemData>& listNew, const PresenceInfo& info) {
    if (info.strName.empty()) {
        return;
    }
    ItemData& item = listNew.emplace_back();
    item.strName = info.strName;
    item.strExtra1 = info.strInfo1;
    item.strExtra2 = info.strInfo2;
    item.iExtra = info.iInfo;
    item.strNameKey = CommonUnits_ToKeyString(info.strName);

    std::array<std::string, MAX_BUDDY_NUMBERS> arrNumber;
    std::size_t uCollected = 0;
    for (const Attribute& attribute : info.listAttr) {
        if (uCollected == arrNumber.size()) {
            break;
        }
        if (attribute.iType == ATTRIBUTE_TYPE_PHONE) {
            arrNumber[uCollected++] = attribute.strValue;
        }
    }
    MySplitByNumber(listNew, {&arrNumber[0], &arrNumber[1], &arrNumber[2]});
}

CWideseekAction::ResultData* CWideseekAction::MyFindResultByType(const std::string& strType) {
    for (ResultData* pBucket : m_listResultData) {
        if (pBucket->strType == strType) {
            return pBucket;
        }
    }
    return nullptr;
}

void CWideseekAction::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
    if (pAction != nullptr && pAction->GetTypeId() == LDAP_ACTION_TYPE_ID) {
        const CLock lock(m_csWork);
        OnTaskActionCallbackLdap(static_cast<NS_TA::CLdapAction*>(pAction));
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
    for (const NS_TA::LdapResultItem& result : pAction->GetResultList()) {
        if (!result.strNumber.empty()) {
            listNew.emplace_back(result.strName, result.strNumber);
        }
    }
    MyMergeRows(*pBucket, listNew);
    MyRestoreCallback();
    pBucket->iState = RESULT_STATE_DONE;
    MyCheckResult(pAction->GetKey(), strConverted);
}

} // namespace NS_WS
