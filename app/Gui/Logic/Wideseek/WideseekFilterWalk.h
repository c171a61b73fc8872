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
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"

#include <cstdint>
#include <list>
#include <map>
#include <vector>

namespace NS_WS {

class CWideseekFilterWalk {
public:
    using Filter = std::map<ItemData, int>;

    // mapFilter stays the caller's and outlives the walk.
    explicit CWideseekFilterWalk(Filter& mapFilter);

    CWideseekFilterWalk(const CWideseekFilterWalk&) = delete;
    CWideseekFilterWalk& operator=(const CWideseekFilterWalk&) = delete;

    // Whether the filter holds the row's name and number.
    bool Holds(const ItemData& item);

    // Records them. False when they are there already.
    bool Add(const ItemData& item);

    // Takes them out. False when they are not there.
    bool Remove(const ItemData& item);

    // Takes out all there is.
    void Clear();

private:
    // Where the row stands in the filter or would stand.
    Filter::iterator MyFind(const ItemData& item) const;

    Filter& m_mapFilter;
    Filter::iterator m_itPlace; // where the last row stood or would have stood
};

// Where a row is, and the first bytes of its name beside it, so that most rows need not be looked at to be put in
// order.
struct FilterPlace {
    std::uint64_t uNameStart;
    std::list<ItemData>::const_iterator itRow;
};

// The rows in the filter's order; rows that are equal there as they stand in the list.
std::vector<FilterPlace> InFilterOrder(const std::list<ItemData>& listItem);

} // namespace NS_WS
