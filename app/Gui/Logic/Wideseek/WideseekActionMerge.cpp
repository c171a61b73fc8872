// Rows out of contacts, and the filter that keeps a name and number from being listed twice.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <tuple>
#include <utility>
#include <vector>

namespace NS_WS {

namespace {

// The first bytes of a name, which compare as the names do where they differ.
std::uint64_t StartOf(const std::string& strName) {
    std::uint64_t uStart = 0;
    for (std::size_t i = 0; i < sizeof uStart; ++i) {
        uStart = uStart << 8U | (i < strName.size() ? static_cast<unsigned char>(strName[i]) : 0U);
    }
    return uStart;
}

struct Place {
    std::uint64_t uNameStart; // beside the row's place, so that most rows need not be looked at to be put in order
    std::list<CWideseekAction::ItemData>::const_iterator itRow;
};

// The rows as they stand in the filter, equal ones as in the list. In this order each stands beside the one before it,
// and the filter is walked along instead of being searched from its root, which is in no cache when it is large.
std::vector<Place> InFilterOrder(const std::list<CWideseekAction::ItemData>& listItem) {
    std::vector<Place> vecPlace;
    vecPlace.reserve(listItem.size());
    for (auto it = listItem.begin(); it != listItem.end(); ++it) {
        vecPlace.push_back({StartOf(it->strName), it});
    }
    std::stable_sort(vecPlace.begin(), vecPlace.end(), [](const Place& a, const Place& b) {
        return a.uNameStart != b.uNameStart ? a.uNameStart < b.uNameStart : *a.itRow < *b.itRow;
    });
    return vecPlace;
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
    std::list<ItemData> listNew;
    for (auto* pNode = hitList.Begin(); pNode != hitList.End(); pNode = pNode->pNext) {
        DirectorySearchData& hit = pNode->value;
        if (hit.strName.empty()) {
            continue;
        }
        ItemData& item = listNew.emplace_back();
        item.strNameKey = CommonUnits_ToKeyString(hit.strName);
        item.strName = std::move(hit.strName);
        item.strExtra2 = std::move(hit.strExtra);
        MySplitByNumber(listNew, {&hit.strNumber1, &hit.strNumber2, &hit.strNumber3});
    }
    MyMergeRows(*pBucket, listNew);
}

void CWideseekAction::MySplitByNumber(std::list<ItemData>& listNew,
                                      const std::array<const std::string*, 3>& arrNumber) {
    bool bFirst = true;
    for (std::size_t i = 0; i < arrNumber.size(); ++i) {
        if (arrNumber[i]->empty()) {
            continue;
        }
        ItemData& row = bFirst ? listNew.back() : listNew.emplace_back(listNew.back());
        row.strNumber = *arrNumber[i];
        row.strNumber2 = *arrNumber[i == 0 ? 1 : 0];
        row.strNumber3 = *arrNumber[i == 2 ? 1 : 2];
        bFirst = false;
    }
    if (bFirst) {
        listNew.pop_back();
    }
}

void CWideseekAction::MyMergeRows(ResultData& bucket, std::list<ItemData>& listNew) {
    for (const Place& place : InFilterOrder(listNew)) {
        if (MyIsFilterExist(*place.itRow)) {
            listNew.erase(place.itRow);
        } else {
            MyAddFilter(*place.itRow, true);
        }
    }
    bucket.listItem.splice(bucket.listItem.end(), listNew);
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

void CWideseekAction::MyClearFilter() {
    m_mapFilter.clear();
    m_itFilter = m_mapFilter.end();
}

void CWideseekAction::MyRemoveFilter(const std::list<ItemData>& listDropped) {
    if (listDropped.size() <= m_mapFilter.size() / 3 * 2) {
        for (const Place& place : InFilterOrder(listDropped)) {
            MyRemoveFilter(*place.itRow);
        }
        return;
    }
    // To begin anew with the few that are left is less work.
    MyClearFilter();
    for (const ResultData* pBucket : m_listResultData) {
        for (const Place& place : InFilterOrder(pBucket->listItem)) {
            MyAddFilter(*place.itRow);
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
