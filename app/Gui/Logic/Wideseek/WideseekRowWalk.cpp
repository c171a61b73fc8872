#include "app/Gui/Logic/Wideseek/WideseekRowWalk.h"

#include <iterator>

namespace NS_WS {

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

void CRowWalk::Drop(std::list<ItemData>& listDropped) {
    const RowPlace itDropped = m_itRow;
    MyGoOn();
    listDropped.splice(listDropped.end(), m_listItem, itDropped);
}

} // namespace NS_WS
