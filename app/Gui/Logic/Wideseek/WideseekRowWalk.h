// The walk along a bucket's rows that narrows them, and what it leaves for the next one: the rows' places.
//
// The rows that a narrowing leaves lie far apart in memory, and a list tells where its next row is only when this one
// has arrived. Their places, in one piece beside the list, let several rows be fetched at once. The first narrowing
// after a search walks along the list itself, whose rows lie as they were made, and notes the places of those it keeps;
// each further one walks along the places.
//
//     for (CRowWalk walk(pBucket->listItem, pBucket->places); walk.HasRow();) {
//         if (IsMatch(walk.Row(), ...)) {
//             walk.Keep();
//         } else {
//             walk.Drop(listDropped);
//         }
//     }
//
// Whoever else changes the list has the places forgotten. Places that are not those of the list by number, first and
// last row are not used. Nothing is locked.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"

#include <cstddef>
#include <iterator>
#include <list>
#include <vector>

namespace NS_WS {

class CRowWalk {
public:
    // Begins at the first row. Both stay the caller's, who leaves them alone while the walk lives.
    CRowWalk(std::list<ItemData>& listItem, CRowPlaces& places);

    // Ends it. A walk that has not come to its end leaves no places.
    ~CRowWalk();

    CRowWalk(const CRowWalk&) = delete;
    CRowWalk& operator=(const CRowWalk&) = delete;

    bool HasRow() const { return m_itRow != m_listItem.end(); }

    // While there is one.
    const ItemData& Row() const { return *m_itRow; }

    // Goes on to the next row; this one stays. Throws std::bad_alloc.
    void Keep();

    // Goes on to the next row; this one moves, as it is and where it lies, to the end of listDropped.
    void Drop(std::list<ItemData>& listDropped);

private:
    using RowPlace = std::list<ItemData>::iterator;

    // Far enough for memory to answer meanwhile, and near enough for a cache to keep it.
    static constexpr std::size_t ROWS_AHEAD = 16;
    static constexpr std::size_t TEXTS_AHEAD = 8;

    void MyGoTo(RowPlace itRow);
    void MyGoOn();

    // What a match looks at of a row where it lies.
    static void MyFetchRow(const ItemData& row) {
        __builtin_prefetch(&row.strName);
        __builtin_prefetch(&row.strNumber2);
        __builtin_prefetch(&row.strNameKey);
    }

    // And what is too long to lie in it.
    static void MyFetchTexts(const ItemData& row) {
        __builtin_prefetch(row.strName.data());
        __builtin_prefetch(row.strNameKey.data());
    }

    std::list<ItemData>& m_listItem;
    std::vector<RowPlace>& m_vecPlace;
    bool m_bPlacesKnown;
    std::size_t m_uAt = 0;   // of the places, which one this row has
    std::size_t m_uKept = 0; // places of rows that stay, in front of all others
    RowPlace m_itRow;
    RowPlace m_itNext;
};

inline void CRowWalk::Keep() {
    if (m_bPlacesKnown) {
        m_vecPlace[m_uKept] = m_itRow;
    } else {
        m_vecPlace.push_back(m_itRow);
    }
    ++m_uKept;
    MyGoOn();
}

inline void CRowWalk::MyGoTo(RowPlace itRow) {
    m_itRow = itRow;
    if (!m_bPlacesKnown && HasRow()) {
        m_itNext = std::next(itRow);
        if (m_itNext != m_listItem.end()) {
            MyFetchRow(*m_itNext);
        }
    }
}

inline void CRowWalk::MyGoOn() {
    if (!m_bPlacesKnown) {
        MyGoTo(m_itNext);
        return;
    }
    ++m_uAt;
    if (m_uAt + ROWS_AHEAD < m_vecPlace.size()) {
        MyFetchRow(*m_vecPlace[m_uAt + ROWS_AHEAD]);
        MyFetchTexts(*m_vecPlace[m_uAt + TEXTS_AHEAD]);
    }
    MyGoTo(m_uAt < m_vecPlace.size() ? m_vecPlace[m_uAt] : m_listItem.end());
}

} // namespace NS_WS
