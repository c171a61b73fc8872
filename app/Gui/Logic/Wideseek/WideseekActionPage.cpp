// Cutting the page out of the buckets, and sending it.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace NS_WS {

namespace {

// A page record of the caller's kind, given up at the end of its scope.
class CSearchCBAction {
public:
    CSearchCBAction() : m_pData(Wideseek_CreateSearchCBAction()) {}
    ~CSearchCBAction() { Wideseek_DestroySearchCBAction(m_pData); }

    CSearchCBAction(const CSearchCBAction&) = delete;
    CSearchCBAction& operator=(const CSearchCBAction&) = delete;

    // Null when there was no memory for it.
    CWideseekCBData* Get() const { return m_pData; }

private:
    CWideseekCBData* m_pData;
};

// The row with this index, at most the list's size, from the end that is nearer.
std::list<ItemData>::const_iterator RowAt(const std::list<ItemData>& listItem, std::size_t uIndex) {
    const std::size_t uBehind = listItem.size() - uIndex;
    return uIndex <= uBehind ? std::next(listItem.begin(), static_cast<std::ptrdiff_t>(uIndex))
                             : std::prev(listItem.end(), static_cast<std::ptrdiff_t>(uBehind));
}

// Appends the rows that the page shows. Those behind it are counted without being looked at, and those in front of it
// are stepped over: whoever pages through many rows would wait for it each time.
void CutBucket(const ResultData& bucket, CPageCut& cut, CWideseekPage& page) {
    const std::list<ItemData>& listItem = bucket.listItem;
    const std::size_t uInFront = bucket.uBlank == 0 ? std::min(cut.GetLead(), listItem.size()) : 0;
    cut.Count(uInFront);
    std::size_t uLeft = bucket.GetShown() - uInFront;
    for (auto it = RowAt(listItem, uInFront); it != listItem.end() && !cut.IsComplete(); ++it) {
        if (cut.Offer(*it)) {
            page.Append(*it);
        }
        uLeft -= it->IsBlank() ? 0U : 1U;
    }
    cut.Count(uLeft);
}

} // namespace

bool CWideseekAction::MyGetPageBounds(int& iFirst, int& iEnd) {
    iFirst = -1;
    iEnd = -1;
    if (CommonAPI_GetFromAndToIndex(&iFirst, &iEnd, GetFromIndex(), GetSearchCount(), MAX_INDEX) == 0) {
        SetResultCode(RESULT_CODE_RANGE);
        return false;
    }
    return true;
}

bool CWideseekAction::MyCopyResult(std::string strKey, std::string strRawKey) {
    m_page.Begin();
    int iFirst = 0;
    int iEnd = 0;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey)) {
        return false;
    }
    CPageCut cut(iFirst, iEnd);
    {
        const CResultLock lock(m_csResult, "MyCopyResult-----------LOCK-----------------",
                               "CWideseekAction::MyCopyResult----------- UN LOCK-----------------");
        for (const ResultData* pBucket : m_listResultData) {
            if (pBucket->iState == RESULT_STATE_DONE) {
                CutBucket(*pBucket, cut, m_page);
            }
        }
    }
    m_page.Publish(strRawKey, cut.GetTotal());
    MyMarkSearched(strKey);
    MyCallback(strKey, strRawKey);
    return true;
}

bool CWideseekAction::MyCallback(std::string strKey, std::string strRawKey) {
    int iFirst = 0;
    int iEnd = 0;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey) || !MyHasCallback()) {
        return false;
    }
    const CSearchCBAction data;
    if (data.Get() == nullptr || data.Get()->GetResultListPtr() == nullptr || !m_page.HasRecord()) {
        SetResultCode(RESULT_CODE_MISSING);
        return false;
    }
    m_page.CopyTo(*data.Get()->GetResultListPtr());
    data.Get()->GetResultListPtr()->strKey = strRawKey;
    data.Get()->SetResultCode(0);
    const bool bSent = MySend(data.Get(), strKey);
    m_page.Prepare();
    return bSent;
}

bool CWideseekAction::MySend(CWideseekCBData* pData, const std::string& strKey) {
    // Posting under the lock makes a detach wait for it, and keeps a newer request from coming between the last look at
    // what is current and the end of the callback object.
    const CLock lock(m_csRequest);
    if (!MyIsCurrentLocked(strKey) || m_pCallback == nullptr) {
        return false;
    }
    m_pCallback->SendMessageToCallingThread(pData);
    m_pCallback = nullptr;
    return true;
}

} // namespace NS_WS
