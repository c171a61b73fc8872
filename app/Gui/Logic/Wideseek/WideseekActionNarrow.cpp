// Narrowing: what is left of the rows held when the key grows.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekRows.h"

namespace NS_WS {

namespace {

// Goes ahead of whoever walks along a list of rows, which lie far apart in memory: what a match looks at is on its way
// while the rows before it are matched. The rows ahead stay where they are meanwhile.
class CWalkAhead {
public:
    explicit CWalkAhead(const std::list<ItemData>& listItem)
        : m_itRow(listItem.begin()), m_itText(listItem.begin()), m_itEnd(listItem.end()) {
        for (int i = 0; i < TEXTS_AHEAD; ++i) {
            MyFetchRow();
        }
        for (int i = 0; i < TEXTS_AHEAD; ++i) {
            Step();
        }
    }

    // With each step of the walk.
    void Step() {
        MyFetchRow();
        if (m_itText != m_itEnd) {
            __builtin_prefetch(m_itText->strName.data());
            __builtin_prefetch(m_itText->strNameKey.data());
            ++m_itText;
        }
    }

private:
    static constexpr int TEXTS_AHEAD = 4; // and as many rows ahead of these

    void MyFetchRow() {
        if (m_itRow != m_itEnd) {
            __builtin_prefetch(&m_itRow->strNumber2);
            __builtin_prefetch(&m_itRow->strNameKey);
            ++m_itRow;
        }
    }

    std::list<ItemData>::const_iterator m_itRow;
    std::list<ItemData>::const_iterator m_itText;
    std::list<ItemData>::const_iterator m_itEnd;
};

} // namespace

bool CWideseekAction::MySearchFromResult(std::string strKey, std::string strRawKey) {
    int iFirst = 0;
    int iEnd = 0;
    if (!MyGetPageBounds(iFirst, iEnd) || !MyIsCurrent(strKey)) {
        if (MyFindResultByType(SOURCE_ID_LDAP) != nullptr) {
            // LDAP has been asked for this key already, so the buckets are no longer the result for any one key.
            MyForgetSearched();
        }
        return false;
    }
    std::list<ItemData> listDropped;
    m_page.Publish(strRawKey, MyNarrowRows(strKey, iFirst, iEnd, listDropped));
    MyMarkSearched(strKey);
    MyCallback(strKey, strRawKey);
    // Nobody waits for this part of the work, and nothing asks the filter before it is done.
    MyForgetRows(listDropped);
    return true;
}

int CWideseekAction::MyNarrowRows(const std::string& strKey, int iFirst, int iEnd, std::list<ItemData>& listDropped) {
    const CResultLock lock(m_csResult, ":MySearchFromResult----------- LOCK-----------------",
                           ":MySearchFromResult----------- UN LOCK-----------------");
    CPageCut cut(iFirst, iEnd);
    for (ResultData* pBucket : m_listResultData) {
        if (pBucket->iState != RESULT_STATE_DONE) {
            continue;
        }
        const ItemData* pLast = nullptr;
        bool bMatch = false;
        CWalkAhead ahead(pBucket->listItem);
        for (auto it = pBucket->listItem.begin(); it != pBucket->listItem.end(); ahead.Step()) {
            const auto itRow = it++;
            if (itRow->IsBlank()) {
                continue;
            }
            if (pLast == nullptr || !IsSameContact(*pLast, *itRow)) {
                bMatch = IsMatch(*itRow, strKey, m_iSearchMode);
            }
            pLast = &*itRow;
            if (!bMatch) {
                listDropped.splice(listDropped.end(), pBucket->listItem, itRow);
            } else if (cut.Offer(*itRow)) {
                m_page.Append(*itRow);
            }
        }
    }
    return cut.GetTotal();
}

} // namespace NS_WS
