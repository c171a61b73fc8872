// The search engine: one long-lived object that works every search request, one after another.
//
// The controller makes it once (Wideseek_CreateSearchAction) and gives it up at the end. For every request the
// controller hands key, page position and callback object over whole (CHandOver) and queues the action for execution;
// the platform then calls Exec on the search thread, which takes the newest request and
//
//   - for an empty key delivers the recent outgoing calls,
//   - for the key whose rows are held already cuts another page out of them (repeat),
//   - for a key that begins with that key narrows the rows held, and asks LDAP again,
//   - for any other key asks every enabled source afresh (full search).
//
// Rows are kept in one bucket per enabled source, in the configured order, and a name and number that one bucket holds
// is not taken into another (the filter). When every source has finished, or the rows in front of the first source that
// is still searching fill the page, the page is sent to the callback object, which is then forgotten: one page per
// request. LDAP alone answers later. It holds the first page up for 100 ms at most; what it brings after that is sent
// as one more page.
//
// Threads. Requests are handed over, keys reset and callback objects detached on callers' threads, at any time. Exec,
// LDAP answers and timer expiries are the work; m_csWork lets one of them run at a time, whatever thread the platform
// brings it on. What both sides touch is guarded by m_csRequest, which is held for a few assignments, or for posting
// one page. A request that has been handed over outranks all work for older ones from that moment: they may go on
// filling buckets but deliver nothing (MyIsCurrent). docs/threads.md has the whole picture.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "app/Gui/Logic/Wideseek/WideseekExport.h"
#include "platform/BaseHelper.h"
#include "platform/Ldap.h"
#include "platform/MsgQueueHelper.h"
#include "platform/TaskAction.h"

#include <array>
#include <list>
#include <map>
#include <string>

namespace NS_WS {

struct WideseekCfgListData;

class CWideseekAction : public NS_TA::CTaskActionCallbackBase, public NS_TA::CTaskAction {
public:
    static constexpr int TYPE_ID = 6;

    // One candidate row: a contact's name and the number that this row stands for.
    struct ItemData {
        std::string strName;
        std::string strNumber;
        std::string strNumber2; // the same contact's other numbers
        std::string strNumber3;
        std::string strNameKey; // the name in keypad digits, matched by digit keys
        std::string strExtra1;  // passed through to the caller
        std::string strExtra2;
        int iExtra = -1;

        ItemData() = default;
        ItemData(const std::string& strTheName, const std::string& strTheNumber)
            : strName(strTheName), strNumber(strTheNumber) {}

        // By name, then by number, byte by byte; nothing else takes part. This order is the duplicate rule.
        bool operator<(const ItemData& other) const;

        // Neither name nor number: such a row is never shown.
        bool IsBlank() const { return strName.empty() && strNumber.empty(); }
    };

    enum ResultState {
        RESULT_STATE_NONE = -1,
        RESULT_STATE_DONE = 0,      // answered; the rows are final. Only these buckets are shown
        RESULT_STATE_PENDING = 2,   // not asked yet
        RESULT_STATE_SEARCHING = 3, // asked, not answered
        RESULT_STATE_FAILED = 4,    // its rows are not shown
    };

    // The rows of one source.
    struct ResultData {
        std::list<ItemData> listItem;
        std::string strType; // source id
        int iState = RESULT_STATE_NONE;
    };

    enum SearchMode {
        SEARCH_MODE_T9 = 1,   // digits: matched with the numbers and the keypad form of the name
        SEARCH_MODE_TEXT = 2, // text: matched with the name
    };

    // Hands a request over whole: what is set between its construction and its end becomes the newest request at once,
    // for every reader. Any thread.
    class CH_SCOPED_CAPABILITY CHandOver {
    public:
        CHandOver(CWideseekAction& action, NS_TA::CTaskActionCallbackBase* pCallback) CH_ACQUIRE(action.m_csRequest);
        ~CHandOver() CH_RELEASE();

        CHandOver(const CHandOver&) = delete;
        CHandOver& operator=(const CHandOver&) = delete;

        // Names this request for TakeBack.
        unsigned long long GetSerial() const;

    private:
        CWideseekAction& m_action;
    };

    // Builds the first buckets from the controller's enabled sources. Made by Wideseek_CreateSearchAction only.
    CWideseekAction();
    ~CWideseekAction() override;

    // Works the newest request. Called by the platform.
    bool Exec() override;

    bool Read() CH_REQUIRES(m_csWork);
    bool Write();
    bool ReadByKey(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool ReadNonEmptyByKey(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool ReadEmptyByKey() CH_REQUIRES(m_csWork);

    // The key of the next request, as typed. Within a CHandOver.
    void SetKey(const std::string& strKey);

    // Forgets which key the rows are for, so that the next non-empty key asks every source. A search that is running
    // cannot undo this. Any thread.
    void ResetKey();

    // Page position: set for the next request (within a CHandOver), got of the request being worked. 0 and no effect
    // without a page record.
    int GetFromIndex() const CH_REQUIRES(m_csWork);
    void SetFromIndex(int iFromIndex);
    int GetSearchCount() const CH_REQUIRES(m_csWork);
    void SetSearchCount(int iSearchCount);

    // A request that was handed over could not be queued: its object gets no page, unless a newer request has replaced
    // it. It goes on outranking older ones, whose work may have broken off for it and left the buckets half narrowed.
    // Any thread.
    void TakeBack(unsigned long long uSerial);

    // Forgets pCallback wherever it is kept. No send to it is running when this returns, and none follows. Any thread.
    void Detach(const NS_TA::CTaskActionCallbackBase* pCallback);

    // No page is sent any more. Work that is running ends as soon as it can. Any thread.
    void Stop();

    // A copy of the last page that was cut, whole: rows, key, position and total belong together. Any thread, any time.
    WS_API WideseekListData GetResultData() const;

    // An answer of the LDAP module. Called by the platform on the search thread.
    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;
    void OnTaskActionCallbackLdap(NS_TA::CLdapAction* pAction) CH_REQUIRES(m_csWork);

    // Routes a timer message for whoever dispatches messages to the action; 0 for any other.
    int OnMessage(ETL_MsgQueueHelper::msgObject& msg);

private:
    // A request as it is handed over.
    struct RequestData {
        std::string strKey;
        std::string strRawKey;
        int iFromIndex = 0;
        int iSearchCount = 0;
        NS_TA::CTaskActionCallbackBase* pCallback = nullptr;
        bool bDropped = false; // pCallback has been forgotten since
        unsigned long long uSerial = 0;
    };

    using Filter = std::map<ItemData, int>;

    // Called by the constructor, when nobody else knows the object. The lock is not taken: the controller makes the
    // action with its own lock held, which work with m_csWork held may wait for.
    bool MyInit() CH_REQUIRES(m_csWork);

    bool MyFinal();
    bool MyIsSearchFromLast(std::string strKey, std::string strLastKey) const;

    // ---- the request (WideseekAction.cpp) ----

    // Makes the newest request the one being worked. False when there is none to work: it has been worked and has had
    // its page.
    bool MyTakeRequest(bool& bRead) CH_REQUIRES(m_csWork);

    // True when the request being worked is for strKey and nothing newer has been handed over.
    bool MyIsCurrent(const std::string& strKey) const CH_REQUIRES(m_csWork);
    bool MyIsCurrentLocked(const std::string& strKey) const CH_REQUIRES(m_csWork, m_csRequest);
    bool MyHasCallback() const;
    bool MyIsStopped() const;

    // Notes that the buckets hold the result for strKey, unless the key has been reset since they were filled.
    void MyMarkSearched(const std::string& strKey) CH_REQUIRES(m_csWork);

    // Notes that they hold no key's result.
    void MyForgetSearched();

    // ---- asking the sources (WideseekActionSource.cpp) ----

    bool MyReSearch(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchByType(const std::string& strType, std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchLocal(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchRemote(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchCalllog(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchBst(std::string strKey, std::string strRawKey, std::string strType) CH_REQUIRES(m_csWork);
    bool MyReSearchDirectory(const std::string& strType, const std::string& strKey,
                             bool (*pQuery)(WideseekItemListData*)) CH_REQUIRES(m_csWork);
    bool MyReSearchLdap(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchUC(std::string strKey, const std::string& strRawKey) CH_REQUIRES(m_csWork);
    static void MyAppendBuddy(std::list<ItemData>& listNew, const PresenceInfo& info);
    ResultData* MyFindResultByType(const std::string& strType) CH_REQUIRES(m_csWork);

    // ---- rows and the filter (WideseekActionMerge.cpp) ----

    void MyInsertResult(ResultData* pBucket, OxList<DirectorySearchData>& hitList) CH_REQUIRES(m_csWork);

    // Makes of the last row, which holds all but the numbers of a contact, one for each number that is not empty.
    static void MySplitByNumber(std::list<ItemData>& listNew, const std::array<const std::string*, 3>& arrNumber);

    // Moves new rows to the bucket's end in their order, but those whose name and number the filter or a row before
    // them holds, and adds them to the filter.
    void MyMergeRows(ResultData& bucket, std::list<ItemData>& listNew) CH_REQUIRES(m_csWork);

    bool MyIsFilterExist(const ItemData& item) const CH_REQUIRES(m_csWork);

    // bAbsent: MyIsFilterExist has just said no.
    bool MyAddFilter(const ItemData& item, bool bAbsent = false) CH_REQUIRES(m_csWork);
    bool MyRemoveFilter(const ItemData& item) CH_REQUIRES(m_csWork);

    void MyClearFilter() CH_REQUIRES(m_csWork);

    // Of rows that no bucket holds any more.
    void MyRemoveFilter(const std::list<ItemData>& listDropped) CH_REQUIRES(m_csWork);

    // Where the row stands in the filter or would stand. Rows are looked up in the filter's order: where the last one
    // stood is looked at first.
    Filter::const_iterator MyFindInFilter(const ItemData& item) const CH_REQUIRES(m_csWork);

    // ---- pages (WideseekActionResult.cpp) ----

    bool MyRefreshResult() CH_REQUIRES(m_csWork);

    // Puts the controller's sources into list and makes a bucket for each. False when there is no controller.
    bool MyRefreshResult(WideseekCfgListData& list) CH_REQUIRES(m_csWork);
    bool MyClearResult() CH_REQUIRES(m_csWork);
    bool MyCheckResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    void MyArmTimer() CH_REQUIRES(m_csWork);
    bool MyCopyResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyCallback(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MySend(CWideseekCBData* pData, const std::string& strKey) CH_REQUIRES(m_csWork);
    void MyRestoreCallback() CH_REQUIRES(m_csWork);
    bool MyGetPageBounds(int& iFirst, int& iEnd) CH_REQUIRES(m_csWork);
    void MyAppendRow(WideseekListData& page, const ItemData& item) CH_REQUIRES(m_csWork);
    void MyEmptyPage() CH_REQUIRES(m_csWork);
    void MySetPage(WideseekListData& page) CH_REQUIRES(m_csWork);
    int MyDealTimeoutMessage(ETL_MsgQueueHelper::msgObject& msg);

    // ---- narrowing (WideseekActionNarrow.cpp) ----

    bool MySearchFromResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);

    // What no longer matches goes into listDropped, and is still in the filter.
    void MyNarrowRows(const std::string& strKey, int iFirst, int iEnd, WideseekListData& page,
                      std::list<ItemData>& listDropped) CH_REQUIRES(m_csWork);

    bool MyIsMatch(const ItemData& item, const std::string& strKey) const CH_REQUIRES(m_csWork);

    // ---- recent calls (WideseekActionRecent.cpp) ----

    bool MySearchRecent() CH_REQUIRES(m_csWork);
    static void MyAppendRecent(const OxVector<GeneralDirItemData>& vecItem, WideseekListData& page);

    std::list<ResultData*> m_listResultData CH_GUARDED_BY(m_csWork); // one per enabled source; owned
    Filter m_mapFilter CH_GUARDED_BY(m_csWork);                      // the names and numbers that some bucket holds
    std::string m_strLastKey CH_GUARDED_BY(m_csRequest);             // the key whose result the buckets hold
    WideseekListData* m_pResultList;                                 // the page; owned, contents guarded by m_csPage
    int m_iSearchMode CH_GUARDED_BY(m_csWork);
    bool m_bTimerWaiting CH_GUARDED_BY(m_csWork); // the timer has been armed for the current full search
    ETL_MsgQueueHelper::chThreadTimer m_timerCheck;
    NS_TA::CTaskActionCallbackBase*
        m_pLastCallback CH_GUARDED_BY(m_csRequest);  // whom a late LDAP answer's page goes to
    std::string m_strKey CH_GUARDED_BY(m_csWork);    // key of the request being worked, converted
    std::string m_strRawKey CH_GUARDED_BY(m_csWork); // the same as typed
    ETL_BaseHelper::chCriticalSection m_csResult;    // held while buckets are walked or deleted

    // What the hand-over between the threads needs. Locks are taken in the order m_csWork, m_csResult; m_csRequest and
    // m_csPage are never held while another one is taken.
    mutable ETL_BaseHelper::chCriticalSection m_csWork;            // one piece of work at a time
    mutable ETL_BaseHelper::chCriticalSection m_csRequest;         // m_requestNext, the callback objects, m_strLastKey
    mutable ETL_BaseHelper::chCriticalSection m_csPage;            // *m_pResultList, which the work alone writes
    RequestData m_requestNext CH_GUARDED_BY(m_csRequest);          // the newest request handed over
    unsigned long long m_uSerial CH_GUARDED_BY(m_csRequest) = 0;   // of the request being worked
    unsigned long long m_uResets CH_GUARDED_BY(m_csRequest) = 0;   // how often the key has been reset
    unsigned long long m_uFilledAt CH_GUARDED_BY(m_csRequest) = 0; // that number when the buckets began to be filled
    bool m_bStopped CH_GUARDED_BY(m_csRequest) = false;
    int m_iFromIndex CH_GUARDED_BY(m_csWork) = 0; // page position of the request being worked
    int m_iSearchCount CH_GUARDED_BY(m_csWork) = 0;

    // Rows for the next page (WideseekSpareRows.h).
    std::list<WideseekItemData> m_listSpare CH_GUARDED_BY(m_csWork);

    // Where the filter was looked at last.
    mutable Filter::const_iterator m_itFilter CH_GUARDED_BY(m_csWork) = m_mapFilter.end();
};

} // namespace NS_WS
