// The filter against duplicates, and the walk along it.
//
// The filter holds the name and number of every row that is in some bucket. When it is large, a search from its root
// meets memory that is in no cache. Rows that are brought in the filter's own order (WideseekFilterOrder.h) stand side
// by side in it, so the walk remembers where it was last and looks there first:
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
// While somebody waits for a page, new rows are only noted, which is less work, and recorded when the page has been
// sent. Until then no other rows may be asked for than those of the same list, in the filter's order:
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

    // Whether the filter holds the row's name and number, or they were noted last.
    bool Holds(const ItemData& item);

    // Records them. False when they are there already.
    bool Add(const ItemData& item);

    // Takes them out. False when they are not there. What was noted is recorded before.
    bool Remove(const ItemData& item);

    // The row that Holds was asked for last, and did not hold, is recorded by AddNoted. Until then it may move to
    // another list, but must not go.
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

} // namespace NS_WS
