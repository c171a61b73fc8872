#include "app/Gui/Logic/Wideseek/WideseekRowWalk.h"

#include <iterator>

namespace NS_WS {

namespace {

// Far enough for memory to answer meanwhile, and near enough for a cache to keep it.
constexpr std::size_t ROWS_AHEAD = 16;
constexpr std::size_t TEXTS_AHEAD = 8;

// What a match looks at of a row where it lies.
void FetchRow(const ItemData& row) {
    __builtin_prefetch(&row.strName);
    __builtin_prefetch(&row.strNumber2);
    __builtin_prefetch(&row.strNameKey);
}

// And what is too long to lie in it.
void FetchTexts(const ItemData& row) {
    __builtin_prefetch(row.strName.data());
    __builtin_prefetch(row.strNameKey.data());
}

} // namespace

CRowWalk::CRowWalk(std::list<ItemData>& listItem, CRowPlaces& places)
    : m_listItem(listItem), m_vecPlace(places.m_vecPlace),
      m_bPlacesKnown(!m_vecPlace.empty() && m_vecPlace.size() == listItem.size() &&
                     m_vecPlace.front() == listItem.begin() && m_vecPlace.back() == std::prev(listItem.end())) {
    if (!m_bPlacesKnown) {
        m_vecPlace.clear();
    }
    MyGoTo(listItem.begin());
}

CRowWalk::~CRowWalk() {
    m_vecPlace.resize(HasRow() ? 0 : m_uKept);
}

void CRowWalk::Keep() {
    if (m_bPlacesKnown) {
        m_vecPlace[m_uKept] = m_itRow;
    } else {
        m_vecPlace.push_back(m_itRow);
    }
    ++m_uKept;
    MyGoOn();
}

void CRowWalk::Drop(std::list<ItemData>& listDropped) {
    const RowPlace itDropped = m_itRow;
    MyGoOn();
    listDropped.splice(listDropped.end(), m_listItem, itDropped);
}

void CRowWalk::MyGoTo(RowPlace itRow) {
    m_itRow = itRow;
    if (!m_bPlacesKnown && HasRow()) {
        m_itNext = std::next(itRow);
        if (m_itNext != m_listItem.end()) {
            FetchRow(*m_itNext);
        }
    }
}

void CRowWalk::MyGoOn() {
    if (!m_bPlacesKnown) {
        MyGoTo(m_itNext);
        return;
    }
    ++m_uAt;
    if (m_uAt + ROWS_AHEAD < m_vecPlace.size()) {
        FetchRow(*m_vecPlace[m_uAt + ROWS_AHEAD]);
        FetchTexts(*m_vecPlace[m_uAt + TEXTS_AHEAD]);
    }
    MyGoTo(m_uAt < m_vecPlace.size() ? m_vecPlace[m_uAt] : m_listItem.end());
}

} // namespace NS_WS
