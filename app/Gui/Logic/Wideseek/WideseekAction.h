// The search engine: one long-lived object that works every search request, one after another.
//
// The controller makes it once (Wideseek_CreateSearchAction) and gives it up at the end. For every request the
// controller hands a request over (HandOver) and queues the action for execution; the platform then calls Exec on the
// search thread, which takes the newest request and
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

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "app/Gui/Logic/Wideseek/WideseekExport.h"
#include "app/Gui/Logic/Wideseek/WideseekFilterWalk.h"
#include "app/Gui/Logic/Wideseek/WideseekPage.h"
#include "app/Gui/Logic/Wideseek/WideseekRequest.h"
#include "platform/BaseHelper.h"
#include "platform/Ldap.h"
#include "platform/MsgQueueHelper.h"
#include "platform/TaskAction.h"

#include <list>
#include <map>
#include <string>

namespace NS_WS {

class CWideseekCBData;
struct WideseekCfgListData;

class WS_API_TYPE CWideseekAction : public NS_TA::CTaskActionCallbackBase, public NS_TA::CTaskAction {
public:
    static constexpr int TYPE_ID = NS_TA::TASK_TYPE_WIDESEEK;

    using ItemData = NS_WS::ItemData;
    using ResultData = NS_WS::ResultData;

    // Builds the first buckets from the controller's enabled sources. Made by Wideseek_CreateSearchAction only.
    CWideseekAction();
    ~CWideseekAction() override;

    // ---- for callers; any thread (WideseekActionRequest.cpp) ----

    // Makes this the newest request, for every reader at once. The number names it for TakeBack.
    unsigned long long HandOver(CWideseekRequest request);

    // A request that was handed over could not be queued: its object gets no page, unless a newer request has replaced
    // it. It goes on outranking older ones, whose work may have broken off for it and left the buckets half narrowed.
    void TakeBack(unsigned long long uSerial);

    // Forgets which key the rows are for, so that the next non-empty key asks every source. A search that is running
    // cannot undo this.
    void ResetKey();

    // Forgets pCallback wherever it is kept. No send to it is running when this returns, and none follows.
    void Detach(const NS_TA::CTaskActionCallbackBase* pCallback);

    // No page is sent any more. Work that is running ends as soon as it can.
    void Stop();

    // A copy of the last page that was cut, whole: rows, key, position and total belong together.
    WideseekListData GetResultData() const;

    // ---- for the platform ----

    // Works the newest request.
    bool Exec() override;

    // An answer of the LDAP module. On the search thread.
    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;

    // Routes a timer message for whoever dispatches messages to the action; 0 for any other.
    int OnMessage(ETL_MsgQueueHelper::msgObject& msg);

private:
    using Filter = std::map<ItemData, int>;

    // ---- the course of a search (WideseekAction.cpp) ----

    // Called by the constructor, when nobody else knows the object. The lock is not taken: the controller makes the
    // action with its own lock held, which work with m_csWork held may wait for.
    bool MyInit() CH_REQUIRES(m_csWork);
    bool MyFinal();

    // What work that ended with an exception, for want of memory, leaves behind: no rows, no key that they are for, no
    // timer, and the result code that says so. The next key finds everything as it is after the start.
    void MyGiveUp() noexcept CH_REQUIRES(m_csWork);

    bool Read() CH_REQUIRES(m_csWork);
    bool Write();
    bool ReadByKey(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool ReadNonEmptyByKey(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyIsSearchFromLast(std::string strKey, std::string strLastKey) const;
    bool MyReSearch(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyCheckResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);

    // What a source has offered is in its bucket: has the page sent that it may complete, and only then records the
    // rows in the filter, for which nobody waits.
    void MyFinishMerge(const std::string& strKey, const std::string& strRawKey) CH_REQUIRES(m_csWork);
    void MyArmTimer() CH_REQUIRES(m_csWork);
    void MyKillTimer() CH_REQUIRES(m_csWork);
    unsigned int MyArmings() const;
    bool MyDealTimeout() CH_REQUIRES(m_csWork);
    int MyDealTimeoutMessage(ETL_MsgQueueHelper::msgObject& msg);
    void OnTaskActionCallbackLdap(NS_TA::CLdapAction* pAction) CH_REQUIRES(m_csWork);

    // Page position of the request being worked; 0 without a page record.
    int GetFromIndex() const CH_REQUIRES(m_csWork) { return m_page.GetFromIndex(); }
    int GetSearchCount() const CH_REQUIRES(m_csWork) { return m_page.GetSearchCount(); }

    // ---- the request being worked (WideseekActionRequest.cpp) ----

    // Makes the newest request the one being worked. False when there is none to work: it has been worked and has had
    // its page.
    bool MyTakeRequest(bool& bRead) noexcept CH_REQUIRES(m_csWork);

    // True when the request being worked is for strKey and nothing newer has been handed over.
    bool MyIsCurrent(const std::string& strKey) const CH_REQUIRES(m_csWork);
    bool MyIsCurrentLocked(const std::string& strKey) const CH_REQUIRES(m_csWork, m_csRequest);
    bool MyHasCallback() const;
    bool MyIsStopped() const;

    // A late answer's page goes to whom the newest request's page goes to, if that is anybody.
    void MyKeepCallback();
    void MyRestoreCallback() CH_REQUIRES(m_csWork);

    // Which key's result the buckets hold: noted before they are filled and again with each page, unless the key has
    // been reset since they began to be filled; forgotten when they hold no key's result.
    std::string MySearchedKey() const;
    void MyBeginSearched(const std::string& strKey) CH_REQUIRES(m_csWork);
    void MyMarkSearched(const std::string& strKey) CH_REQUIRES(m_csWork);
    void MyForgetSearched();

    // ---- asking the sources, and merging what they offer (WideseekActionSource.cpp) ----

    bool MyRefreshResult() CH_REQUIRES(m_csWork);

    // Puts the controller's sources into list and makes a bucket for each. False when there is no controller.
    bool MyMakeBuckets(WideseekCfgListData& list) CH_REQUIRES(m_csWork);
    bool MyClearResult() CH_REQUIRES(m_csWork);
    ResultData* MyFindResultByType(const std::string& strType) CH_REQUIRES(m_csWork);

    bool MyReSearchByType(const std::string& strType, std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchDirectory(const std::string& strType, const std::string& strKey,
                             bool (*pQuery)(WideseekItemListData*)) CH_REQUIRES(m_csWork);
    bool MyReSearchLdap(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyReSearchUC(std::string strKey, const std::string& strRawKey) CH_REQUIRES(m_csWork);

    void MyInsertResult(ResultData* pBucket, OxList<DirectorySearchData>& hitList) CH_REQUIRES(m_csWork);

    // Rows that somebody waits for are recorded by MyFinishMerge.
    void MyMergeRows(ResultData& bucket, std::list<ItemData>& listNew) CH_REQUIRES(m_csWork);
    bool MyIsFilterExist(const ItemData& item) CH_REQUIRES(m_csWork);
    bool MyAddFilter(const ItemData& item) CH_REQUIRES(m_csWork);
    bool MyRemoveFilter(const ItemData& item) CH_REQUIRES(m_csWork);

    // Takes rows that no bucket holds any more out of the filter.
    void MyForgetRows(const std::list<ItemData>& listDropped) CH_REQUIRES(m_csWork);

    // ---- narrowing (WideseekActionNarrow.cpp) and recent calls (WideseekActionRecent.cpp) ----

    bool MySearchFromResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);

    // Appends what the page shows and gives the total. What no longer matches goes into listDropped, and is still in
    // the filter.
    int MyNarrowRows(const std::string& strKey, int iFirst, int iEnd, std::list<ItemData>& listDropped)
        CH_REQUIRES(m_csWork);

    bool ReadEmptyByKey() CH_REQUIRES(m_csWork);
    bool MySearchRecent() CH_REQUIRES(m_csWork);
    void MyAppendRecent(const GeneralDirItemData* pCall) CH_REQUIRES(m_csWork);

    // ---- cutting and sending pages (WideseekActionPage.cpp) ----

    bool MyGetPageBounds(int& iFirst, int& iEnd) CH_REQUIRES(m_csWork);
    bool MyCopyResult(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MyCallback(std::string strKey, std::string strRawKey) CH_REQUIRES(m_csWork);
    bool MySend(CWideseekCBData* pData, const std::string& strKey) CH_REQUIRES(m_csWork);

    std::list<ResultData*> m_listResultData CH_GUARDED_BY(m_csWork); // one per enabled source; owned
    Filter m_mapFilter CH_GUARDED_BY(m_csWork);                      // changed by m_walk alone
    std::string m_strLastKey CH_GUARDED_BY(m_csRequest);             // the key whose result the buckets hold
    CWideseekPage m_page;                                            // the page record, m_pResultList, with its lock
    int m_iSearchMode CH_GUARDED_BY(m_csWork);
    bool m_bTimerWaiting CH_GUARDED_BY(m_csWork); // the timer has been armed for the current full search
    ETL_MsgQueueHelper::chThreadTimer m_timerCheck;
    NS_TA::CTaskActionCallbackBase*
        m_pLastCallback CH_GUARDED_BY(m_csRequest);  // whom a late LDAP answer's page goes to
    std::string m_strKey CH_GUARDED_BY(m_csWork);    // key of the request being worked, converted
    std::string m_strRawKey CH_GUARDED_BY(m_csWork); // the same as typed
    ETL_BaseHelper::chCriticalSection m_csResult;    // held while buckets are walked or deleted

    CWideseekFilterWalk m_walk CH_GUARDED_BY(m_csWork);

    // What the hand-over between the threads needs. Locks are taken in the order m_csWork, m_csResult; m_csRequest and
    // the page's own are never held while another one is taken.
    mutable ETL_BaseHelper::chCriticalSection m_csWork;          // one piece of work at a time
    mutable ETL_BaseHelper::chCriticalSection m_csRequest;       // requests, the callback objects, m_strLastKey
    CWideseekRequest m_requestNext CH_GUARDED_BY(m_csRequest);   // the newest request handed over
    unsigned long long m_uSerialNext CH_GUARDED_BY(m_csRequest); // its number
    unsigned long long m_uSerial CH_GUARDED_BY(m_csRequest);     // number of the request being worked
    unsigned long long m_uResets CH_GUARDED_BY(m_csRequest);     // how often the key has been reset
    unsigned long long m_uFilledAt CH_GUARDED_BY(m_csRequest);   // that number when the buckets began to be filled
    unsigned int m_uArmings CH_GUARDED_BY(m_csRequest);          // how often the timer has been armed or killed
    bool m_bStopped CH_GUARDED_BY(m_csRequest);
};

} // namespace NS_WS
