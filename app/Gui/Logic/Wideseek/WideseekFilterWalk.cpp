#include "app/Gui/Logic/Wideseek/WideseekFilterWalk.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <tuple>
#include <utility>

namespace NS_WS {

namespace {

using Place = std::vector<FilterPlace>::iterator;

// So few are put in order without memory beside them.
constexpr std::ptrdiff_t FEW_ROWS = 32;

// From so many on, it takes less time to deal them out byte by byte than to compare them.
constexpr std::ptrdiff_t MANY_ROWS = 512;

// From so many on, rows that begin alike are put in order by what follows.
constexpr std::ptrdiff_t MANY_ALIKE = 4;

// A common beginning of more names than this is rare, and then rows are compared after all.
constexpr std::size_t LONGEST_START = 64;

// The bytes of a name from uFrom on, as many as there is room for, which compare as the names do where they differ.
std::uint64_t BytesFrom(const std::string& strName, std::size_t uFrom) {
    std::uint64_t uBytes = 0;
    for (std::size_t i = uFrom; i < uFrom + sizeof uBytes; ++i) {
        uBytes = uBytes << 8U | (i < strName.size() ? static_cast<unsigned char>(strName[i]) : 0U);
    }
    return uBytes;
}

// What is equal stays as it stands.
template <typename Before> void Sort(Place itFirst, Place itEnd, Before isBefore) {
    if (itEnd - itFirst > FEW_ROWS) {
        if (!std::is_sorted(itFirst, itEnd, isBefore)) {
            std::stable_sort(itFirst, itEnd, isBefore);
        }
        return;
    }
    for (Place it = itFirst; it != itEnd; ++it) {
        std::rotate(std::upper_bound(itFirst, it, *it, isBefore), it, std::next(it));
    }
}

// Deals the places out by one byte of their names after the other, from the last to the first: a radix sort. A byte
// that all have alike needs no dealing. What is equal stays as it stands.
void DealOut(Place itFirst, Place itEnd) {
    constexpr std::size_t BYTES = sizeof itFirst->uNameBytes;
    using Counts = std::array<std::uint32_t, 256>;
    const auto byteOf = [](const FilterPlace& place, std::size_t uByte) {
        return static_cast<unsigned char>(place.uNameBytes >> 8U * uByte);
    };
    std::array<Counts, BYTES> arrCount{};
    for (Place it = itFirst; it != itEnd; ++it) {
        for (std::size_t uByte = 0; uByte < BYTES; ++uByte) {
            ++arrCount[uByte][byteOf(*it, uByte)];
        }
    }
    const auto uPlaces = static_cast<std::size_t>(itEnd - itFirst);
    std::vector<FilterPlace> vecDealt(uPlaces);
    FilterPlace* pFrom = &*itFirst;
    FilterPlace* pTo = vecDealt.data();
    for (std::size_t uByte = 0; uByte < BYTES; ++uByte) {
        Counts& count = arrCount[uByte];
        if (count[byteOf(*pFrom, uByte)] == uPlaces) {
            continue;
        }
        std::exclusive_scan(count.begin(), count.end(), count.begin(), 0U);
        for (std::size_t i = 0; i < uPlaces; ++i) {
            pTo[count[byteOf(pFrom[i], uByte)]++] = pFrom[i];
        }
        std::swap(pFrom, pTo);
    }
    if (pFrom == vecDealt.data()) {
        std::copy(vecDealt.begin(), vecDealt.end(), itFirst);
    }
}

// The names of the places are alike up to uFrom, and the places hold their bytes from there on. A last byte of 0 says
// that they end there. Looking at each row once for its next bytes is less work than comparing rows with each other.
void SortByName(Place itFirst, Place itEnd, std::size_t uFrom) {
    if (itEnd - itFirst >= MANY_ROWS) {
        DealOut(itFirst, itEnd);
    } else {
        Sort(itFirst, itEnd, [](const FilterPlace& a, const FilterPlace& b) { return a.uNameBytes < b.uNameBytes; });
    }
    const std::size_t uNext = uFrom + sizeof itFirst->uNameBytes;
    while (itFirst != itEnd) {
        const Place itAlike = itFirst;
        while (itFirst != itEnd && itFirst->uNameBytes == itAlike->uNameBytes) {
            FetchAhead(&*itFirst, &*itFirst + (itEnd - itFirst));
            ++itFirst;
        }
        if (itFirst - itAlike < MANY_ALIKE || (itAlike->uNameBytes & 0xFFU) == 0 || uNext >= LONGEST_START) {
            Sort(itAlike, itFirst, [](const FilterPlace& a, const FilterPlace& b) { return *a.itRow < *b.itRow; });
            continue;
        }
        std::for_each(itAlike, itFirst, [&](FilterPlace& p) { p.uNameBytes = BytesFrom(p.itRow->strName, uNext); });
        SortByName(itAlike, itFirst, uNext);
    }
}

} // namespace

bool ItemData::operator<(const ItemData& other) const {
    const int iName = strName.compare(other.strName);
    return iName != 0 ? iName < 0 : strNumber < other.strNumber;
}

CFilterOrder InFilterOrder(const std::list<ItemData>& listItem) {
    std::vector<FilterPlace> vecPlace;
    vecPlace.reserve(listItem.size());
    for (auto it = listItem.begin(); it != listItem.end(); ++it) {
        vecPlace.push_back({BytesFrom(it->strName, 0), it});
    }
    SortByName(vecPlace.begin(), vecPlace.end(), 0);
    return CFilterOrder(std::move(vecPlace));
}

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
