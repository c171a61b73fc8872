// The page that a search builds, and the one that it has published.
//
// The work builds a page row by row and publishes it whole; whoever asks for the last page, on whatever thread, gets
// the published one and never a part of the next. The page that is sent to the callback object is a copy of it:
//
//     m_page.Begin();                       // the rows of before are no longer shown
//     m_page.Append(row);
//     m_page.Publish(strRawKey, iTotal);
//     m_page.CopyTo(*pData->GetResultListPtr());
//     m_page.Prepare();                     // when it is sent and nobody waits
//
// So a page's rows are made twice, and each takes several blocks of memory. Blocks that the receiver frees on its own
// thread come back to the work's thread slowly. Therefore rows that are no longer shown are used again, and Prepare
// makes as many anew as went away with the page that was sent.
//
// One thread at a time works on it; Copy may be called from any thread at any time. m_csPage guards the published page.
// Only the work writes that page, so the work reads it without the lock.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/BaseHelper.h"

#include <list>
#include <string>

namespace NS_WS {

class CWideseekPage {
public:
    // Without its record until Init.
    CWideseekPage();
    ~CWideseekPage();

    CWideseekPage(const CWideseekPage&) = delete;
    CWideseekPage& operator=(const CWideseekPage&) = delete;

    // Makes the record where there is none, and ends it. Without one, which there is no memory for, every page is
    // empty.
    void Init();
    void Final();

    // Whether there is a record.
    bool HasRecord() const { return m_pResultList != nullptr; }

    // Which rows the next page is to show: index of the first one and how many; both 0 without a record.
    void SetPosition(int iFromIndex, int iSearchCount);
    int GetFromIndex() const { return HasRecord() ? m_iFromIndex : 0; }
    int GetSearchCount() const { return HasRecord() ? m_iSearchCount : 0; }

    // Begins the next page. The published one loses its rows; its key and its numbers stay. Needs no memory.
    void Begin();

    // Appends what callers are shown of a row.
    void Append(const ItemData& item);

    // Makes what was appended since Begin the published page, with the position that is set.
    void Publish(const std::string& strKey, int iTotalCount);

    // Copies the published page to one that has no rows yet.
    void CopyTo(WideseekListData& page);

    // Makes rows for the next page, which is likely to be like the published one.
    void Prepare();

    // The published page; a page without rows when there is no record. Any thread.
    WideseekListData Copy() const;

private:
    WideseekItemData& MyNewRow(std::list<WideseekItemData>& listItem);
    void MyReuse(std::list<WideseekItemData>& listItem);

    WideseekListData* m_pResultList; // the published page; owned
    mutable ETL_BaseHelper::chCriticalSection m_csPage;
    WideseekListData m_pageNext;
    std::list<WideseekItemData> m_listSpare;
    int m_iFromIndex = 0;
    int m_iSearchCount = 0;
};

} // namespace NS_WS
