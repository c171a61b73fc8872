// Page rows to spare: made before a page needs them. The module's own; not for callers.
//
// A page goes out twice, into the page record and into what the callback object receives, and each row takes several
// blocks of memory. Those that the receiver frees on its own thread come back to the search thread slowly. So the
// record's rows are used again, and as many as went away are made anew when a page has been sent and nobody waits:
//
//     WideseekItemData& row = AppendSpare(m_listSpare, page.listItem); // every member of it is assigned
//     KeepSpare(m_listSpare, listFormer);                              // rows that are no longer shown
//     PrepareSpare(m_listSpare, page.listItem);                        // the next page is likely to be like this one
//
// The list of spare rows is the caller's; nothing is locked.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <list>

namespace NS_WS {

// A new last row of listItem, from listSpare while there is any. It may hold anything, so all members are to be
// assigned.
WideseekItemData& AppendSpare(std::list<WideseekItemData>& listSpare, std::list<WideseekItemData>& listItem);

// Moves the rows of listItem to listSpare, as far as they fill a few screens, and frees the others.
void KeepSpare(std::list<WideseekItemData>& listSpare, std::list<WideseekItemData>& listItem);

// Makes rows like those of listPage, which is on show, until there are as many to spare: these and its own are what the
// next page takes. Of a long page, rows for a few screens.
void PrepareSpare(std::list<WideseekItemData>& listSpare, const std::list<WideseekItemData>& listPage);

} // namespace NS_WS
