#include "app/Gui/Logic/Wideseek/WideseekRows.h"

#include "platform/CommonAPI.h"
#include "platform/Presence.h"

#include <array>
#include <cstddef>
#include <utility>

namespace NS_WS {

namespace {

using Numbers = std::array<const std::string*, 3>;

// Makes of the last row, which holds all but the numbers of a contact, one for each number that is not empty.
void SplitByNumber(std::list<ItemData>& listRow, const Numbers& arrNumber) {
    bool bFirst = true;
    for (std::size_t i = 0; i < arrNumber.size(); ++i) {
        if (arrNumber[i]->empty()) {
            continue;
        }
        ItemData& row = bFirst ? listRow.back() : listRow.emplace_back(listRow.back());
        row.strNumber = *arrNumber[i];
        row.strNumber2 = *arrNumber[i == 0 ? 1 : 0];
        row.strNumber3 = *arrNumber[i == 2 ? 1 : 2];
        bFirst = false;
    }
    if (bFirst) {
        listRow.pop_back();
    }
}

bool Contains(const std::string& strField, const std::string& strKey) {
    return CommonAPI_StringMatch(strField, strKey, false, STRING_MATCH_CONTAINS) != 0;
}

bool NumberContains(const std::string& strNumber, const std::string& strKey) {
    static const std::string strPlus("+");
    return Contains(CommonAPI_TrimString(strNumber, strPlus, TRIM_TYPE_BOTH_ENDS), strKey);
}

} // namespace

void AppendContact(std::list<ItemData>& listRow, DirectorySearchData& contact) {
    if (contact.strName.empty()) {
        return;
    }
    ItemData& row = listRow.emplace_back();
    row.strNameKey = CommonUnits_ToKeyString(contact.strName);
    row.strName = std::move(contact.strName);
    row.strExtra2 = std::move(contact.strExtra);
    SplitByNumber(listRow, {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3});
}

void AppendBuddy(std::list<ItemData>& listRow, const PresenceInfo& buddy) {
    if (buddy.strName.empty()) {
        return;
    }
    ItemData& row = listRow.emplace_back();
    row.strName = buddy.strName;
    row.strExtra1 = buddy.strInfo1;
    row.strExtra2 = buddy.strInfo2;
    row.iExtra = buddy.iInfo;
    row.strNameKey = CommonUnits_ToKeyString(buddy.strName);

    // An empty number takes its place among the first three.
    static const std::string strNone;
    Numbers arrNumber = {&strNone, &strNone, &strNone};
    std::size_t uCollected = 0;
    for (const Attribute& attribute : buddy.listAttr) {
        if (uCollected == arrNumber.size()) {
            break;
        }
        if (attribute.iType == ATTRIBUTE_TYPE_PHONE) {
            arrNumber[uCollected++] = &attribute.strValue;
        }
    }
    SplitByNumber(listRow, arrNumber);
}

void AppendAnswer(std::list<ItemData>& listRow, const NS_TA::LdapResultItem& answer) {
    if (!answer.strNumber.empty()) {
        listRow.emplace_back(answer.strName, answer.strNumber);
    }
}

ItemData RowOfCall(const GeneralDirItemData& call) {
    ItemData row(call.strName.empty() ? call.strNumber : call.strName, call.strNumber);
    row.strExtra2 = call.strExtra;
    return row;
}

SearchMode SearchModeOf(const std::string& strKey) {
    return CommonAPI_IsSearchByT9(strKey) ? SEARCH_MODE_T9 : SEARCH_MODE_TEXT;
}

bool IsMatch(const ItemData& item, const std::string& strKey, int iSearchMode) {
    switch (iSearchMode) {
    case SEARCH_MODE_T9:
        return NumberContains(item.strNumber, strKey) || NumberContains(item.strNumber2, strKey) ||
               NumberContains(item.strNumber3, strKey) || Contains(item.strNameKey, strKey);
    case SEARCH_MODE_TEXT:
        return Contains(item.strName, strKey);
    default:
        return false;
    }
}

} // namespace NS_WS
