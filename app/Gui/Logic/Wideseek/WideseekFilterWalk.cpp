#include "app/Gui/Logic/Wideseek/WideseekFilterWalk.h"

#include "app/Gui/Logic/Wideseek/WideseekFilterOrder.h"

#include <cstddef>
#include <iterator>
#include <tuple>
#include <utility>

namespace NS_WS {

CWideseekFilterWalk::CWideseekFilterWalk(Filter& mapFilter) : m_mapFilter(mapFilter), m_itPlace(mapFilter.end()) {
}

bool CWideseekFilterWalk::Holds(const ItemData& item) {
    if (!m_vecNoted.empty() && !(*m_vecNoted.back().itRow < item)) {
        return true;
    }
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
    AddNoted();
    if (!Holds(item)) {
        return false;
    }
    m_itPlace = m_mapFilter.erase(m_itPlace);
    return true;
}

void CWideseekFilterWalk::Note(std::list<ItemData>::const_iterator itRow) {
    m_vecNoted.push_back({itRow, m_itPlace});
}

void CWideseekFilterWalk::AddNoted() {
    const NotedRow* const pEnd = m_vecNoted.data() + m_vecNoted.size();
    for (const NotedRow* pNoted = m_vecNoted.data(); pNoted != pEnd; ++pNoted) {
        FetchAhead(pNoted, pEnd);
        m_itPlace = pNoted->itPlace;
        Add(*pNoted->itRow);
    }
    std::vector<NotedRow>().swap(m_vecNoted);
}

void CWideseekFilterWalk::Clear() {
    std::vector<NotedRow>().swap(m_vecNoted);
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
