// libWideseek: which contacts match what a person has typed so far.
//
// These functions are the library. A screen calls Wideseek_SearchUnion at every key and receives pages of rows at its
// callback object, as NS_WS::CWideseekCBData (WideseekCBData.h) on the thread of that object:
//
//     class CScreen : public NS_TA::CTaskActionCallbackBase {
//         void OnKey(const std::string& strKey) { Wideseek_SearchUnion(strKey, 0, 10, this); }
//         void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;  // shows the page
//         void OnLeave() { Wideseek_ResetCallBack(this); }                 // before the screen goes away
//     };
//
// Wideseek_PreInit comes first, at start-up; NS_WS::CWideseekController::ReleaseInstance comes last. A request gets one
// page, within about 100 ms of the search of its fast sources, and one more when LDAP answers late. A newer request
// outranks an older one, which then gets no page. No function waits for a search, and none throws.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "app/Gui/Logic/Wideseek/WideseekExport.h"
#include "platform/TaskAction.h"

#include <string>

namespace NS_WS {
class CWideseekAction;
class CWideseekCBData;
} // namespace NS_WS

extern "C" {

// Makes the controller: reads the source list, makes the search action, listens for configuration changes. True when it
// exists. At start-up, before other threads use the library.
WS_API bool Wideseek_PreInit();

// Searches for strKey (UTF-8, as typed; empty: the recent outgoing calls) and has the rows from index iFromIndex on,
// iSearchCount of them (0: all), sent to pCallback. Returns at once; true when the search was queued. A negative index
// or count gets no page. pCallback stays the caller's, who detaches it before it goes away. Any thread.
WS_API bool Wideseek_SearchUnion(const std::string& strKey, int iFromIndex, int iSearchCount,
                                 NS_TA::CTaskActionCallbackBase* pCallback);

// The next non-empty key asks all sources afresh instead of narrowing the rows found so far. Any thread.
WS_API void Wideseek_ResetKey();

// pCallback is going away: when this returns, nothing is being sent to it and nothing will be, until it searches again.
// Any thread.
WS_API void Wideseek_ResetCallBack(NS_TA::CTaskActionCallbackBase* pCallback);

// True when an empty key offers the recent outgoing calls: "FeaturesRecentCallEnable" is 1. Any thread.
WS_API bool Wideseek_IsRecentSearchOpen();

// Appends the recent outgoing calls from index pList->iFromIndex on, pList->iSearchCount of them, newest first, to
// pList->listItem, and sets pList->iTotalCount to how many there are. False, with pList unchanged, for null or when the
// call log cannot be read. Waits for the call log. Any thread.
WS_API bool Wideseek_SearchRecentOutCall(CallLogSearchListData* pList);

// Makes a search action or a page, with one reference for the caller; null when there is no memory. The destroy
// function of the same kind gives that reference up; null is ignored.
WS_API NS_WS::CWideseekAction* Wideseek_CreateSearchAction();
WS_API void Wideseek_DestroySearchAction(NS_WS::CWideseekAction* pAction);
WS_API NS_WS::CWideseekCBData* Wideseek_CreateSearchCBAction();
WS_API void Wideseek_DestroySearchCBAction(NS_WS::CWideseekCBData* pData);

} // extern "C"
