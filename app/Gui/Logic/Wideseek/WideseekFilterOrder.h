// Rows in the filter's order: by name, then by number, byte by byte. Brought in this order, they meet the filter side
// by side (WideseekFilterWalk.h).
//
//     for (const FilterPlace& place : InFilterOrder(listNew)) { use(*place.itRow); }
//
// Rows lie far apart in memory. So they are put in order by some bytes of their names that stand beside their places,
// and the rows that a loop comes to are fetched ahead.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <utility>
#include <vector>

namespace NS_WS {

// Where a row is, and some bytes of its name beside it, so that most rows need not be looked at to be put in order.
struct FilterPlace {
    std::uint64_t uNameBytes;
    std::list<ItemData>::const_iterator itRow;
};

// What is looked at first of the rows a few places on is on its way from now on.
template <typename Place> void FetchAhead(const Place* pPlace, const Place* pEnd) {
    constexpr std::ptrdiff_t ROWS_AHEAD = 16;
    constexpr std::ptrdiff_t NAMES_AHEAD = 8;
    if (pEnd - pPlace > ROWS_AHEAD) {
        __builtin_prefetch(&pPlace[ROWS_AHEAD].itRow->strName);
        __builtin_prefetch(&pPlace[ROWS_AHEAD].itRow->strNumber);
        __builtin_prefetch(pPlace[NAMES_AHEAD].itRow->strName.data());
    }
}

// Places for a loop, which may take the row out of the list that it is at.
class CFilterOrder {
public:
    // A place on the way, as a loop steps from one to the next. Valid as long as the order.
    class CStep {
    public:
        // At pPlace; pEnd is behind the last one.
        CStep(const FilterPlace* pPlace, const FilterPlace* pEnd) : m_pPlace(pPlace), m_pEnd(pEnd) {}
        // The place; not at the end.
        const FilterPlace& operator*() const { return *m_pPlace; }
        // On to the next one; not at the end.
        CStep& operator++() {
            FetchAhead(m_pPlace, m_pEnd);
            ++m_pPlace;
            return *this;
        }
        // Whether they are at different places of the same order.
        bool operator!=(const CStep& other) const { return m_pPlace != other.m_pPlace; }

    private:
        const FilterPlace* m_pPlace;
        const FilterPlace* m_pEnd;
    };

    // The places as they are to be walked along.
    explicit CFilterOrder(std::vector<FilterPlace> vecPlace) : m_vecPlace(std::move(vecPlace)) {}

    // The first place, and behind the last one.
    CStep begin() const { return {m_vecPlace.data(), MyEnd()}; }
    CStep end() const { return {MyEnd(), MyEnd()}; }

private:
    const FilterPlace* MyEnd() const { return m_vecPlace.data() + m_vecPlace.size(); }

    std::vector<FilterPlace> m_vecPlace;
};

// The rows in the filter's order; rows that are equal there as they stand in the list.
CFilterOrder InFilterOrder(const std::list<ItemData>& listItem);

} // namespace NS_WS
