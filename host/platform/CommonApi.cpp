// The phone's string helpers (platform/CommonAPI.h).
#include "platform/CommonAPI.h"

#include "host/text/FieldMatch.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"

#include <algorithm>
#include <string_view>

namespace {

// For few characters a loop takes less than a call of std::string_view::find.
bool isOneOf(std::string_view characters, char wanted) {
    for (const char each : characters) {
        if (each == wanted) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string CommonAPI_StringConvert(const std::string& strText, StringConvertType eType) {
    return eType == STRING_CONVERT_SEARCH_KEY ? host::text::convertKey(strText) : strText;
}

bool CommonAPI_IsSearchByT9(const std::string& strKey) {
    return host::text::isKeypadKey(strKey);
}

std::string CommonAPI_TrimString(const std::string& strText, const std::string& strChars, TrimType eType) {
    if (eType != TRIM_TYPE_BOTH_ENDS) {
        return strText;
    }
    std::string_view text = strText;
    while (!text.empty() && isOneOf(strChars, text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isOneOf(strChars, text.back())) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

int CommonAPI_StringMatch(const std::string& strText, const std::string& strKey, bool /*bWholeWord*/,
                          StringMatchType eType) {
    return eType == STRING_MATCH_CONTAINS && host::text::isIn(strText, strKey) ? 1 : 0;
}

std::string CommonUnits_ToKeyString(const std::string& strName) {
    std::string forms;
    host::text::appendKeypadForms(strName, forms);
    return forms;
}

int CommonAPI_GetFromAndToIndex(int* piFirst, int* piEnd, int iFromIndex, int iSearchCount, int iMaxIndex) {
    if (piFirst == nullptr || piEnd == nullptr || iFromIndex < 0 || iSearchCount < 0 || iMaxIndex < 0) {
        return 0;
    }
    *piFirst = std::min(iFromIndex, iMaxIndex);
    const int iRest = iMaxIndex - *piFirst;
    *piEnd = *piFirst + (iSearchCount == 0 ? iRest : std::min(iSearchCount, iRest));
    return 1;
}
