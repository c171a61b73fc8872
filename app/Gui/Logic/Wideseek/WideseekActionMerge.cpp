// Rows out of contacts, and the filter that keeps a name and number from being listed twice.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/CommonAPI.h"

#include <array>
#include <cstddef>
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
        DirectorySearchData& hit = pNode->value;
        if (hit.strName.empty()) {
            continue;
        }
        item.strNameKey = CommonUnits_ToKeyString(hit.strName);
        item.strName = std::move(hit.strName);
        item.strExtra2 = std::move(hit.strExtra);
        MyAppendRows(*pBucket, item, hit.strNumber1, hit.strNumber2, hit.strNumber3);
    }
}

void CWideseekAction::MyAppendRows(ResultData& bucket, ItemData& item, const std::string& strNumber1,
                                   const std::string& strNumber2, const std::string& strNumber3) {
    struct Numbers {
        const std::string& strNumber;
        const std::string& strOther1;
        const std::string& strOther2;
    };
    const std::array<Numbers, 3> arrNumbers = {Numbers{strNumber1, strNumber2, strNumber3},
                                               Numbers{strNumber2, strNumber1, strNumber3},
                                               Numbers{strNumber3, strNumber1, strNumber2}};
    const std::size_t uRows = !strNumber3.empty() ? 3 : !strNumber2.empty() ? 2 : 1;
    for (std::size_t i = 0; i < uRows; ++i) {
        const Numbers& numbers = arrNumbers[i];
        if (!numbers.strNumber.empty()) {
            item.strNumber = numbers.strNumber;
            item.strNumber2 = numbers.strOther1;
            item.strNumber3 = numbers.strOther2;
            MyAppendRow(bucket, item, i + 1 == uRows);
        }
    }
}

void CWideseekAction::MyAppendRow(ResultData& bucket, ItemData& item, bool bUseUp) {
    Filter::const_iterator place;
    if (MyIsFilterExist(item, &place)) {
        return;
    }
    MyAddFilter(item, &place);
    if (bUseUp) {
        bucket.listItem.push_back(std::move(item));
    } else {
        bucket.listItem.push_back(item);
    }
}

bool CWideseekAction::MyIsFilterExist(const ItemData& item, Filter::const_iterator* pPlace) const {
    const auto place = m_mapFilter.lower_bound(item);
    if (pPlace != nullptr) {
        *pPlace = place;
    }
    return place != m_mapFilter.end() && !(item < place->first);
}

bool CWideseekAction::MyAddFilter(const ItemData& item, const Filter::const_iterator* pPlace) {
    Filter::const_iterator place;
    if (pPlace != nullptr) {
        place = *pPlace;
    } else if (MyIsFilterExist(item, &place)) {
        return false;
    }
    // Name and number are all that the filter looks at, so the entry holds nothing else.
    ItemData entry;
    entry.strName = item.strName;
    entry.strNumber = item.strNumber;
    m_mapFilter.emplace_hint(place, std::move(entry), 1);
    return true;
}

bool CWideseekAction::MyRemoveFilter(const ItemData& item) {
    return m_mapFilter.erase(item) != 0;
}

} // namespace NS_WS
