// What the smallest phone searches in, and how it compares: two contacts, and the letters of ASCII.
#include "Phone.h"

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
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

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

bool isOneOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

constexpr std::string_view keypad = "0123456789*#";

// What is plainly a number, without all that only makes it readable; anything else as it is.
std::string bareNumber(const std::string& text) {
    std::string bare;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isOneOf(keypad, text[i])) {
            bare += text[i];
        } else if (!isOneOf(" -.()[]", text[i]) && (text[i] != '+' || i > 0)) {
            return text;
        }
    }
    return bare.empty() ? text : bare;
}

// A name, or a word of a key, without what makes no difference.
std::string compact(std::string_view text) {
    std::string left;
    for (const char c : lower(std::string(text))) {
        if (!isOneOf(" '-.,()[]", c)) {
            left += c;
        }
    }
    return left;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// Whether each word of the key occurs in the name.
bool hasWords(const std::string& name, std::string_view key) {
    const std::string where = compact(name);
    while (!key.empty()) {
        const std::size_t end = std::min(key.find_first_of(" ,"), key.size());
        if (!contains(where, compact(key.substr(0, end)))) {
            return false;
        }
        key.remove_prefix(std::min(end + 1, key.size()));
    }
    return true;
}

bool fails(const char* source, const WideseekItemListData& query) {
    phone::tell("%s for \"%s\": there is none", source, query.strKey.c_str());
    return false;
}

} // namespace

void app_log(int, int, const char*, ...) {
}

std::string CommonAPI_TrimString(const std::string& strText, const std::string& strChars, TrimType) {
    const std::size_t uFirst = std::min(strText.find_first_not_of(strChars), strText.size());
    return strText.substr(uFirst, strText.find_last_not_of(strChars) + 1 - uFirst);
}

std::string CommonAPI_StringConvert(const std::string& strText, StringConvertType) {
    return bareNumber(lower(CommonAPI_TrimString(strText, " ", TRIM_TYPE_BOTH_ENDS)));
}

bool CommonAPI_IsSearchByT9(const std::string& strKey) {
    return !strKey.empty() && strKey.find_first_not_of(keypad) == std::string::npos;
}

int CommonAPI_StringMatch(const std::string& strText, const std::string& strKey, bool, StringMatchType) {
    return (CommonAPI_IsSearchByT9(strKey) ? contains(strText, strKey) : hasWords(strText, strKey)) ? 1 : 0;
}

std::string CommonUnits_ToKeyString(const std::string& strName) {
    std::string strKeys;
    for (const char c : lower(strName)) {
        if (c >= 'a' && c <= 'z') {
            strKeys += "22233344455566677778889999"[c - 'a'];
        } else if (isOneOf(keypad, c)) {
            strKeys += c;
        }
    }
    return strKeys + ' '; // one form
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
    phone::tell("the local directory for \"%s\"", strKey.c_str());
    const bool bDigits = CommonAPI_IsSearchByT9(strKey);
    for (const Contact& contact : contacts) {
        const std::string strText = bDigits ? CommonUnits_ToKeyString(contact.name) : contact.name;
        if (CommonAPI_StringMatch(strText, strKey, false, STRING_MATCH_CONTAINS) != 0 ||
            (bDigits && contains(contact.number, strKey))) {
            pData->listResult.PushBack({contact.name, contact.number, "", "", ""});
        }
    }
    return true;
}

// What this phone does not have: modules that fail, and no presence at all.
bool Directory_LocalLogWideseek(WideseekItemListData* pData) {
    return fails("the call log", *pData);
}

bool RemoteDir_Wideseek(WideseekItemListData* pData) {
    return fails("the remote directory", *pData);
}

bool BSFTDir_Wideseek(WideseekItemListData* pData) {
    return fails("the BroadSoft directory", *pData);
}

int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>&, int, int) {
    phone::tell("the outgoing calls: there are none");
    return -1;
}

// Answers that there is no directory, later, as a phone with a directory would.
int Ldap_SearchAsync(const std::string& strKey, int, int, NS_TA::CTaskActionCallbackBase* pCallback, void*) {
    phone::tell("LDAP for \"%s\": it will answer that there is none", strKey.c_str());
    auto* pAnswer = new (__FILE__, __LINE__) NS_TA::CLdapAction;
    if (pAnswer != nullptr) {
        pAnswer->SetCreatFlag(true);
        pAnswer->SetKey(strKey);
        pAnswer->SetResultCode(1);
        phone::postAnswer(*pCallback, pAnswer);
    }
    return 0;
}

CPresenceContactManager* CPresenceContactManager::GetInstance() {
    return nullptr;
}

// The phone's files lie below the current folder.
std::string SystemFile_GetRealPath(const std::string& strPath) {
    const std::string strRealPath = "." + strPath;
    std::error_code ignored;
    const bool bThere = std::filesystem::exists(strRealPath, ignored);
    return !bThere || std::filesystem::is_regular_file(strRealPath, ignored) ? strRealPath : "";
}
