// Rows out of contacts, and the filter that keeps a name and number from being listed twice.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/CommonAPI.h"

#include <utility>

namespace NS_WS {

bool CWideseekAction::ItemData::operator<(const ItemData& other) const {
    const int iName = strName.compare(other.strName);
    return iName != 0 ? iName < 0 : strNumber < other.strNumber;
}

void CWideseekAction::MyInsertResult(ResultData* pBucket, OxList<DirectorySearchData>& hitList) {
    if (pBucket == nullptr) {
        return;
    }
    ItemData item;
    for (auto* pNode = hitList.Begin(); pNode != hitList.End(); pNode = pNode->pNext) {
        const DirectorySearchData& hit = pNode->value;
        if (hit.strName.empty()) {
            continue;
        }
        item.strName = hit.strName;
        item.strExtra2 = hit.strExtra;
        item.strNameKey = CommonUnits_ToKeyString(hit.strName);
        MyAppendRows(*pBucket, item, hit.strNumber1, hit.strNumber2, hit.strNumber3);
    }
}

void CWideseekAction::MyAppendRows(ResultData& bucket, ItemData& item, const std::string& strNumber1,
                                   const std::string& strNumber2, const std::string& strNumber3) {
    MyAppendNumber(bucket, item, strNumber1, strNumber2, strNumber3);
    MyAppendNumber(bucket, item, strNumber2, strNumber1, strNumber3);
    MyAppendNumber(bucket, item, strNumber3, strNumber1, strNumber2);
}

void CWideseekAction::MyAppendNumber(ResultData& bucket, ItemData& item, const std::string& strNumber,
                                     const std::string& strOther1, const std::string& strOther2) {
    if (strNumber.empty()) {
        return;
    }
    item.strNumber = strNumber;
    item.strNumber2 = strOther1;
    item.strNumber3 = strOther2;
    MyAppendRow(bucket, item);
}

void CWideseekAction::MyAppendRow(ResultData& bucket, const ItemData& item) {
    if (!MyIsFilterExist(item)) {
        bucket.listItem.push_back(item);
        MyAddFilter(item);
    }
}

bool CWideseekAction::MyIsFilterExist(const ItemData& item) const {
    return m_mapFilter.find(item) != m_mapFilter.end();
}

bool CWideseekAction::MyAddFilter(const ItemData& item) {
    if (MyIsFilterExist(item)) {
        return false;
    }
    m_mapFilter.emplace(item, 1);
    return true;
}

bool CWideseekAction::MyRemoveFilter(const ItemData& item) {
    return m_mapFilter.erase(item) != 0;
}

} // namespace NS_WS
