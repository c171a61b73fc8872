// The module's one process-wide object.
//
// It owns the list of sources (CWideseekModel) and the one search action (CWideseekAction), turns requests into work
// for that action, and reacts when the phone's configuration changes. The exported functions (modWideseek.h) are the
// way to it; only the list of sources is asked of it directly:
//
//     NS_WS::WideseekCfgListData list;
//     NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list);
//
// It is made on first use and lives until ReleaseInstance. After that a configuration change does nothing, a search
// that is still running ends without a page, and the next use makes a fresh controller.
//
// Threads: everything here may be called from any thread at any time, but the pointer that GetInstance returns is only
// good until someone calls ReleaseInstance. The module itself uses the controller through CUse, which ReleaseInstance
// waits for; no use waits for a search.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "app/Gui/Logic/Wideseek/WideseekExport.h"
#include "platform/MsgQueueHelper.h"
#include "platform/TaskAction.h"

#include <string>

namespace NS_WS {

class CWideseekAction;
class CWideseekModel;

class WS_API_TYPE CWideseekController : public ETL_MsgQueueHelper::chMsgProcesser {
public:
    // Keeps the controller alive as long as it exists. Any thread; not on a thread that will call ReleaseInstance
    // meanwhile.
    class CUse {
    public:
        // bCreate: makes the controller when there is none.
        explicit CUse(bool bCreate);
        ~CUse();

        CUse(const CUse&) = delete;
        CUse& operator=(const CUse&) = delete;

        // Whether there is a controller, and the controller itself.
        explicit operator bool() const { return m_pController != nullptr; }
        CWideseekController* operator->() const { return m_pController; }

    private:
        CWideseekController* m_pController;
    };

    // The controller, made when there is none; null when there is no memory for it.
    static CWideseekController* GetInstance();

    // Ends the controller. Returns as soon as the uses of it have ended; a search that is running is not waited for. No
    // page is sent after this.
    static void ReleaseInstance();

    // The enabled sources of the controller that there is; false when there is none. It never makes one: a search that
    // outlives its controller must not bring up another. Throws std::bad_alloc without memory, with *pList unchanged.
    static bool LendEnableCfgList(WideseekCfgListData* pList);

    // Always true; making the controller is the work.
    bool PreInit();

    // Hands a request to the search action and returns at once. strKey is the key as typed, and may be empty;
    // iFromIndex and iSearchCount say which rows are wanted (count 0: all); the page goes to pCallback. False when the
    // phone did not take it.
    bool SearchUnion(const std::string& strKey, int iFromIndex, int iSearchCount,
                     NS_TA::CTaskActionCallbackBase* pCallback);

    // The next non-empty key asks every source afresh.
    void ResetKey();

    // pCallback is going away: nothing is sent to it any more. Null and strangers change nothing.
    void ResetCallback(NS_TA::CTaskActionCallbackBase* pCallback);

    // Appends the enabled sources in their order to pList. False without pList or sources to read.
    bool GetEnableCfgList(WideseekCfgListData* pList) const;

    // The handler of the phone's messages: a changed source list is read again. Non-zero when that succeeded. Called by
    // the platform on its message thread.
    static int OnMessage(ETL_MsgQueueHelper::msgObject& msg);

private:
    CWideseekController();
    ~CWideseekController() override;

    template <typename T> friend void TrackedDelete(T* pObject, const char* pszFile, int iLine) noexcept;

    static CWideseekController* MyGetInstance();

    // Registers OnMessage with the phone; false when there is no memory for it. With no lock held: a phone that calls
    // handlers with a lock of its own held takes that lock here, too.
    static bool MyListen();
    static void MyDestroy(CWideseekController* pController); // null: nothing happens
    bool MyInit();
    bool MyFinal();
    int MyOnConfigureMessage(ETL_MsgQueueHelper::msgObject& msg);

    static CWideseekController* m_pInst;

    CWideseekAction* m_pSearchAction; // holds one reference
    CWideseekModel* m_pModel;         // owned
    int m_iUses;                      // how many CUse there are of this controller
    bool m_bListens;                  // OnMessage is registered, or being so
};

} // namespace NS_WS
