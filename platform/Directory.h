// The phone's directory and call-log modules.
//
// The four query functions take a record whose strKey is set, append the matching contacts to its listResult, and
// return true on success. On failure, want of memory included, they return false and may have appended some contacts
// all the same. Key and contacts match as CommonAPI_StringMatch and CommonUnits_ToKeyString (CommonAPI.h) decide: a key
// of keypad digits is looked for in the numbers (without "+") and in the keypad form of the name, any other key in the
// name, so that a query for a longer key finds a part of what a query for its beginning found. The record stays the
// caller's. They block until the answer is there. Any thread.
//
// An empty key is an allowed key: it tells of a search box that has been cleared. What is found for it is not used, so
// nothing need be.
//
// What of a contact (DirectorySearchData, in WideseekData.h) becomes what of a row: strName its name; each of the three
// numbers that is not empty one row of its own; strExtra its strExtra2, which a screen gets as it is. The row's
// strExtra1 is empty and its iExtra -1. A contact without a name gives no row.
#pragma once

struct WideseekItemListData;
struct GeneralDirItemData;
template <typename T> class OxVector;

// The phone's own contacts.
bool Directory_LocalDirWideseek(WideseekItemListData* pData);

// The phone's call log.
bool Directory_LocalLogWideseek(WideseekItemListData* pData);

// The remote XML directory.
bool RemoteDir_Wideseek(WideseekItemListData* pData);

// The BroadSoft directory, which also serves the network directory.
bool BSFTDir_Wideseek(WideseekItemListData* pData);

// Appends the outgoing calls with index iFromIndex to iFromIndex + iSearchCount - 1, newest first, to vecItem, fewer
// when there are not so many. Returns how many outgoing calls there are (0 or more), or a negative value on failure.
// Negative arguments are a failure. The elements belong to vecItem, which deletes them: each is made alone, with plain
// new. A call's strName (strNumber for a call without) becomes a row's name, strNumber its number, strExtra its
// strExtra2. Any thread.
int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>& vecItem, int iFromIndex, int iSearchCount);
