// Rows out of contacts, and the filter that keeps a name and number from being listed twice.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <tuple>
#include <utility>

namespace NS_WS {

namespace {

// Enough for rows to lie close together, few enough to be made for nothing at the end of a source's answer.
constexpr std::size_t MAX_SPARE_ROWS = 64;

// What the rows of one contact have in common.
void CopyShared(const CWideseekAction::ItemData& from, CWideseekAction::ItemData& to) {
    to.strName = from.strName;
    to.strNameKey = from.strNameKey;
    to.strExtra1 = from.strExtra1;
    to.strExtra2 = from.strExtra2;
    to.iExtra = from.iExtra;
}

} // namespace

bool CWideseekAction::ItemData::operator<(const ItemData& other) const {
    const int iName = strName.compare(other.strName);
    return iName != 0 ? iName < 0 : strNumber < other.strNumber;
}

void CWideseekAction::MyInsertResult(ResultData* pBucket, OxList<DirectorySearchData>& hitList) {
    if (pBucket == nullptr) {
        return;
    }
    SpareRows spare = MyMakeSpareRows(hitList.Count());
    for (auto* pNode = hitList.Begin(); pNode != hitList.End(); pNode = pNode->pNext) {
        DirectorySearchData& hit = pNode->value;
        if (hit.strName.empty()) {
            continue;
        }
        ItemData& row = MySpareRow(spare);
        row.strNameKey = CommonUnits_ToKeyString(hit.strName);
        row.strName = std::move(hit.strName);
        row.strExtra2 = std::move(hit.strExtra);
        MyAppendRows(*pBucket, spare, hit.strNumber1, hit.strNumber2, hit.strNumber3);
    }
}

CWideseekAction::SpareRows CWideseekAction::MyMakeSpareRows(std::size_t uRows) {
    return {{}, std::clamp<std::size_t>(uRows, 1, MAX_SPARE_ROWS)};
}

CWideseekAction::ItemData& CWideseekAction::MySpareRow(SpareRows& spare) {
    if (spare.listItem.empty()) {
        spare.listItem.resize(spare.uAtATime);
    }
    return spare.listItem.front();
}

void CWideseekAction::MyAppendRows(ResultData& bucket, SpareRows& spare, const std::string& strNumber1,
                                   const std::string& strNumber2, const std::string& strNumber3) {
    struct Numbers {
        const std::string& strNumber;
        const std::string& strOther1;
        const std::string& strOther2;
    };
    const std::array<Numbers, 3> arrNumbers = {Numbers{strNumber1, strNumber2, strNumber3},
                                               Numbers{strNumber2, strNumber1, strNumber3},
                                               Numbers{strNumber3, strNumber1, strNumber2}};
    const ItemData* pLast = nullptr;
    for (const Numbers& numbers : arrNumbers) {
        if (numbers.strNumber.empty()) {
            continue;
        }
        ItemData& row = MySpareRow(spare);
        // A row that was not appended is still the next one.
        if (pLast != nullptr && pLast != &row) {
            CopyShared(*pLast, row);
        }
        pLast = &row;
        row.strNumber = numbers.strNumber;
        row.strNumber2 = numbers.strOther1;
        row.strNumber3 = numbers.strOther2;
        MyAppendRow(bucket, spare);
    }
}

void CWideseekAction::MyAppendRow(ResultData& bucket, SpareRows& spare) {
    const ItemData& item = spare.listItem.front();
    if (MyIsFilterExist(item)) {
        return;
    }
    bucket.listItem.splice(bucket.listItem.end(), spare.listItem, spare.listItem.begin());
    MyAddFilter(item, true);
}

bool CWideseekAction::MyIsFilterExist(const ItemData& item) const {
    m_itFilter = MyFindInFilter(item);
    return m_itFilter != m_mapFilter.end() && !(item < m_itFilter->first);
}

bool CWideseekAction::MyAddFilter(const ItemData& item, bool bAbsent) {
    if (!bAbsent && MyIsFilterExist(item)) {
        return false;
    }
    // Name and number are all that the filter looks at, so the entry holds nothing else.
    m_itFilter =
        m_mapFilter.emplace_hint(m_itFilter, std::piecewise_construct,
                                 std::forward_as_tuple(item.strName, item.strNumber), std::forward_as_tuple(1));
    return true;
}

bool CWideseekAction::MyRemoveFilter(const ItemData& item) {
    if (!MyIsFilterExist(item)) {
        return false;
    }
    m_itFilter = m_mapFilter.erase(m_itFilter);
    return true;
}

void CWideseekAction::MyRemoveFilter(const std::list<ItemData>& listDropped) {
    if (listDropped.size() <= m_mapFilter.size() / 3 * 2) {
        for (const ItemData& item : listDropped) {
            MyRemoveFilter(item);
        }
        return;
    }
    // To begin anew with the few that are left is less work.
    m_mapFilter.clear();
    m_itFilter = m_mapFilter.end();
    for (const ResultData* pBucket : m_listResultData) {
        for (const ItemData& item : pBucket->listItem) {
            MyAddFilter(item);
        }
    }
}

CWideseekAction::Filter::const_iterator CWideseekAction::MyFindInFilter(const ItemData& item) const {
    auto it = m_itFilter;
    if (it != m_mapFilter.end() && it->first < item) {
        ++it;
        if (it == m_mapFilter.end() || !(it->first < item)) {
            return it;
        }
        return m_mapFilter.lower_bound(item);
    }
    for (int iSteps = 0; iSteps < 2; ++iSteps) {
        if (it == m_mapFilter.begin() || std::prev(it)->first < item) {
            return it;
        }
        --it;
    }
    return m_mapFilter.lower_bound(item);
}

} // namespace NS_WS
