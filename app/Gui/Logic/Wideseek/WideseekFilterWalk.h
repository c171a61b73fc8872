// The filter against duplicates, and the walk along it.
//
// The filter holds the name and number of every row that is in some bucket. When it is large, a search from its root
// meets memory that is in no cache. Rows that are brought in the filter's own order stand side by side in it, so the
// walk remembers where it was last and looks there first:
//
//     for (const FilterPlace& place : InFilterOrder(listNew)) {
//         if (walk.Holds(*place.itRow)) {
//             listNew.erase(place.itRow);
//         } else {
//             walk.Add(*place.itRow);
//         }
//     }
//
// In any other order the answers are the same and only take longer. Whoever has a walk changes the filter through it
// and in no other way. Nothing is locked.
//
// While somebody waits for a page, new rows are only noted, which is a third of the work, and recorded when the page
// has been sent. Until then no other rows may be asked for than those of the same list, in the filter's order:
//
//     for (const FilterPlace& place : InFilterOrder(listNew)) {
//         if (walk.Holds(*place.itRow)) {
//             listNew.erase(place.itRow);
//         } else {
//             walk.Note(place.itRow);
//         }
//     }
//     ... // the rows may move to another list
//     walk.AddNoted();
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <utility>
#include <vector>

namespace NS_WS {

class CWideseekFilterWalk {
public:
    using Filter = std::map<ItemData, int>;

    // mapFilter stays the caller's and outlives the walk.
    explicit CWideseekFilterWalk(Filter& mapFilter);

    CWideseekFilterWalk(const CWideseekFilterWalk&) = delete;
    CWideseekFilterWalk& operator=(const CWideseekFilterWalk&) = delete;

    // Whether the filter holds the row's name and number, or they were noted last.
    bool Holds(const ItemData& item);

    // Records them. False when they are there already.
    bool Add(const ItemData& item);

    // Takes them out. False when they are not there.
    bool Remove(const ItemData& item);

    // The row that Holds was asked for last, and did not hold, is recorded by AddNoted. It stays where it is until
    // then.
    void Note(std::list<ItemData>::const_iterator itRow);
    void AddNoted();

    // Takes out all there is, and forgets what was noted.
    void Clear();

private:
    struct NotedRow {
        std::list<ItemData>::const_iterator itRow;
        Filter::iterator itPlace; // in the filter, before which it belongs
    };

    // Where the row stands in the filter or would stand.
    Filter::iterator MyFind(const ItemData& item) const;

    Filter& m_mapFilter;
    Filter::iterator m_itPlace; // where the last row stood or would have stood
    std::vector<NotedRow> m_vecNoted;
};

// Where a row is, and some bytes of its name beside it, so that most rows need not be looked at to be put in order.
struct FilterPlace {
    std::uint64_t uNameBytes;
    std::list<ItemData>::const_iterator itRow;
};

// Rows lie far apart in memory. What is looked at first of the rows a few places on is on its way from now on.
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
