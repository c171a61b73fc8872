#include "app/Gui/Logic/Wideseek/WideseekFilterWalk.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <tuple>
#include <utility>

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

} // namespace

bool ItemData::operator<(const ItemData& other) const {
    const int iName = strName.compare(other.strName);
    return iName != 0 ? iName < 0 : strNumber < other.strNumber;
}

std::vector<FilterPlace> InFilterOrder(const std::list<ItemData>& listItem) {
    std::vector<FilterPlace> vecPlace;
    vecPlace.reserve(listItem.size());
    for (auto it = listItem.begin(); it != listItem.end(); ++it) {
        vecPlace.push_back({StartOf(it->strName), it});
    }
    std::stable_sort(vecPlace.begin(), vecPlace.end(), [](const FilterPlace& a, const FilterPlace& b) {
        return a.uNameStart != b.uNameStart ? a.uNameStart < b.uNameStart : *a.itRow < *b.itRow;
    });
    return vecPlace;
}

CWideseekFilterWalk::CWideseekFilterWalk(Filter& mapFilter) : m_mapFilter(mapFilter), m_itPlace(mapFilter.end()) {
}

bool CWideseekFilterWalk::Holds(const ItemData& item) {
    m_itPlace = MyFind(item);
    return m_itPlace != m_mapFilter.end() && !(item < m_itPlace->first);
}

bool CWideseekFilterWalk::Add(const ItemData& item) {
    const std::size_t uBefore = m_mapFilter.size();
    // Name and number are all that the filter looks at, so the entry holds nothing else.
    m_itPlace = m_mapFilter.emplace_hint(m_itPlace, std::piecewise_construct,
                                         std::forward_as_tuple(item.strName, item.strNumber), std::forward_as_tuple(1));
    return m_mapFilter.size() != uBefore;
}

bool CWideseekFilterWalk::Remove(const ItemData& item) {
    if (!Holds(item)) {
        return false;
    }
    m_itPlace = m_mapFilter.erase(m_itPlace);
    return true;
}

void CWideseekFilterWalk::Clear() {
    m_mapFilter.clear();
    m_itPlace = m_mapFilter.end();
}

CWideseekFilterWalk::Filter::iterator CWideseekFilterWalk::MyFind(const ItemData& item) const {
    auto it = m_itPlace;
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
