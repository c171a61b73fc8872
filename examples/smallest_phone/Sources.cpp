// What the smallest phone searches in, and how it compares: two contacts, and the letters of ASCII.
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/AppLog.h"
#include "platform/CommonAPI.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "platform/Presence.h"
#include "platform/SystemFile.h"
#include "platform/TrackedMemory.h"

#include <algorithm>

namespace {

struct Contact {
    const char* name;
    const char* number;
};

constexpr Contact contacts[] = {{"Ann Lee", "5301"}, {"Jed Fox", "2202"}};

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

} // namespace

void app_log(int, int, const char*, ...) {
}

std::string CommonAPI_TrimString(const std::string& strText, const std::string& strChars, TrimType) {
    const std::size_t uFirst = std::min(strText.find_first_not_of(strChars), strText.size());
    return strText.substr(uFirst, strText.find_last_not_of(strChars) + 1 - uFirst);
}

std::string CommonAPI_StringConvert(const std::string& strText, StringConvertType) {
    return lower(CommonAPI_TrimString(strText, " ", TRIM_TYPE_BOTH_ENDS));
}

bool CommonAPI_IsSearchByT9(const std::string& strKey) {
    return !strKey.empty() && strKey.find_first_not_of("0123456789*#") == std::string::npos;
}

int CommonAPI_StringMatch(const std::string& strText, const std::string& strKey, bool, StringMatchType) {
    return lower(strText).find(lower(strKey)) != std::string::npos ? 1 : 0;
}

std::string CommonUnits_ToKeyString(const std::string& strName) {
    std::string strKeys;
    for (const char c : lower(strName)) {
        if (c >= 'a' && c <= 'z') {
            strKeys += "22233344455566677778889999"[c - 'a'];
        }
    }
    return strKeys;
}

int CommonAPI_GetFromAndToIndex(int* piFirst, int* piEnd, int iFromIndex, int iSearchCount, int iMaxIndex) {
    if (piFirst == nullptr || piEnd == nullptr || iFromIndex < 0 || iSearchCount < 0 || iMaxIndex < 0) {
        return 0;
    }
    *piFirst = std::min(iFromIndex, iMaxIndex);
    *piEnd = iSearchCount == 0 || iSearchCount > iMaxIndex - *piFirst ? iMaxIndex : *piFirst + iSearchCount;
    return 1;
}

int configParser_GetConfigInt(const char*) {
    return -1;
}

bool Directory_LocalDirWideseek(WideseekItemListData* pData) {
    const std::string& strKey = pData->strKey;
    for (const Contact& contact : contacts) {
        const bool bDigits = CommonAPI_IsSearchByT9(strKey);
        const std::string strText = bDigits ? CommonUnits_ToKeyString(contact.name) : contact.name;
        if (CommonAPI_StringMatch(strText, strKey, false, STRING_MATCH_CONTAINS) != 0 ||
            (bDigits && std::string(contact.number).find(strKey) != std::string::npos)) {
            pData->listResult.PushBack({contact.name, contact.number, "", "", ""});
        }
    }
    return true;
}

// What this phone does not have: modules that fail, and no presence at all.
bool Directory_LocalLogWideseek(WideseekItemListData*) {
    return false;
}

bool RemoteDir_Wideseek(WideseekItemListData*) {
    return false;
}

bool BSFTDir_Wideseek(WideseekItemListData*) {
    return false;
}

int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>&, int, int) {
    return -1;
}

int Ldap_SearchAsync(const std::string& strKey, int, int, NS_TA::CTaskActionCallbackBase* pCallback, void*) {
    auto* pAnswer = new (__FILE__, __LINE__) NS_TA::CLdapAction;
    if (pAnswer != nullptr) {
        pAnswer->SetCreatFlag(true);
        pAnswer->SetKey(strKey);
        pAnswer->SetResultCode(1);
        pCallback->SendMessageToCallingThread(pAnswer);
    }
    return 0;
}

CPresenceContactManager* CPresenceContactManager::GetInstance() {
    return nullptr;
}

// The phone's files lie below the current folder.
std::string SystemFile_GetRealPath(const std::string& strPath) {
    return "." + strPath;
}
