// The records that the search module shares with its callers and with the phone's libraries. Plain data: no logic, and
// all strings hold bytes as received. Members, types and order are part of the agreement with those libraries.
#pragma once

#include "app/Gui/Logic/Wideseek/OxContainer.h"

#include <list>
#include <string>

// One result row as the caller receives it: a name and the one number that the row stands for.
struct WideseekItemData {
    std::string strName;
    std::string strNumber;
    std::string strExtra1; // what the source passes through to the caller, unchanged
    std::string strExtra2;
    int iExtra = -1;
};

// One page of result rows.
struct WideseekListData {
    std::list<WideseekItemData> listItem;
    std::string strKey;   // the key of the search, as typed
    int iFromIndex = 0;   // index of the page's first row in the whole result
    int iSearchCount = 0; // rows asked for
    int iTotalCount = 0;  // rows of the whole result
};

// One contact as a directory module finds it, with up to three numbers.
struct DirectorySearchData {
    std::string strName;
    std::string strNumber1;
    std::string strNumber2;
    std::string strNumber3;
    std::string strExtra;
};

// A query of a directory module: the key goes in, the contacts found come out.
struct WideseekItemListData {
    OxList<DirectorySearchData> listResult;
    std::string strKey;
    int iReserved1 = 0;
    int iReserved2 = 0;
    int iReserved3 = 0;
};

// One call of the call log's list of outgoing calls.
struct GeneralDirItemData {
    std::string strName;
    std::string strNumber;
    std::string strExtra;
};

// One outgoing call as Wideseek_SearchRecentOutCall hands it to its caller.
struct CallLogSearchData {
    std::string strName;
    std::string strNumber;
};

// A request for outgoing calls: from index and count go in, the calls and how many there are in all come out.
struct CallLogSearchListData {
    std::list<CallLogSearchData> listItem;
    int iFromIndex = 0;
    int iSearchCount = 0;
    int iTotalCount = 0;
};

// One attribute of a presence buddy.
struct Attribute {
    std::string strAttrName;
    std::string strValue;
    int iType = 0; // an AttributeType (platform/Presence.h)
};

// The details of a presence buddy.
struct PresenceInfo {
    std::string strInfo1;
    std::string strName;
    std::string strInfo2;
    std::string strInfo3;
    int iInfo = -1;
    std::string strInfo4;
    std::list<Attribute> listAttr;
    bool bInfo = true;
    std::string strInfo5;
    int iContactId = -1; // whose details are asked for
};
