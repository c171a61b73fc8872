// One page of search results on its way to the caller.
//
// The search makes one for every page (Wideseek_CreateSearchCBAction), fills it, posts it to the caller's callback
// object and gives it up. It arrives there as a task action of type id 7:
//
//     void CScreen::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
//         if (pAction->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID) {
//             const auto* pData = static_cast<NS_WS::CWideseekCBData*>(pAction);
//             Show(pData->GetResultList());
//         }
//     }
//
// It is reference-counted: the receiver may read it during the call and takes a reference to keep it. It is written
// before it is posted and read afterwards, so it needs no lock. Every operation copes with a page that could not be
// allocated. None throws: what there is no memory for is not set and not appended, and a copy of it is empty.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "app/Gui/Logic/Wideseek/WideseekExport.h"
#include "platform/TaskAction.h"

#include <string>

namespace NS_WS {

class WS_API CWideseekCBData : public NS_TA::CTaskAction {
public:
    static constexpr int TYPE_ID = NS_TA::TASK_TYPE_WIDESEEK_PAGE;

    CWideseekCBData();
    ~CWideseekCBData() override;

    // Nothing to execute. Always true.
    bool Exec() override;

    // The page itself, for whoever fills it; null when it could not be allocated.
    WideseekListData* GetResultListPtr();

    // A copy of the page; an empty one without a page.
    WideseekListData GetResultList() const;

    // The key of the search; empty without a page.
    std::string GetKey() const;
    void SetKey(const std::string& strKey);

    // Index of the page's first row, rows asked for, rows of the whole result; -1 without a page.
    int GetFromIndex() const;
    void SetFromIndex(int iFromIndex);
    int GetSearchCount() const;
    void SetSearchCount(int iSearchCount);
    int GetTotalCount() const;
    void SetTotalCount(int iTotalCount);

    // Appends a row.
    void AppendResult(const WideseekItemData& item);

    // Drops the rows; key and counts stay.
    void ResetResultList();

private:
    WideseekListData* m_pResultList;
};

} // namespace NS_WS
