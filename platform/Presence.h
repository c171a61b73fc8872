// The phone's presence library: the buddies whose presence the phone shows.
//
// The two operations of the manager are virtual: the search calls them through the object that GetInstance gives, and
// their order in this class is part of the agreement. A phone derives its manager from CPresenceContactManager.
//
// What of a buddy's details (PresenceInfo, in WideseekData.h) becomes what of a row: strName its name; strValue of the
// first three Attributes of type ATTRIBUTE_TYPE_PHONE its numbers, one row for each that is not empty; strInfo1,
// strInfo2 and iInfo its strExtra1, strExtra2 and iExtra, which a screen gets as they are. The other members are not
// looked at. A buddy without a name gives no row.
#pragma once

#include <list>
#include <string>

struct PresenceInfo;

// Which of a buddy's attributes a query looks at.
enum AttrType {
    ATTR_TYPE_SEARCH = 3, // whatever a contact search matches: the phone numbers and the name
};

// Whose details are asked for.
enum PresenceType {
    PRESENCE_TYPE_BUDDY = 2,
};

// What an attribute of a buddy is (the iType of an Attribute).
enum AttributeType {
    ATTRIBUTE_TYPE_PHONE = 2, // a phone number
};

// The answer of a buddy query: the ids of the buddies found, and four numbers that only the library itself uses.
struct ContactBuddyListData {
    std::list<int> listContactId;
    int iReserved1 = 0;
    int iReserved2 = 0;
    int iReserved3 = 0;
    int iReserved4 = 2;
};

// The buddies, as the presence library knows them.
class CPresenceContactManager {
public:
    // The one manager, or null on a phone without presence service. It lives as long as the phone runs. Any thread.
    static CPresenceContactManager* GetInstance();

    // Fills pList with the ids of the buddies that match strKey, matched as the directory modules match (Directory.h).
    // iState and iGroupId: 1 and 0 stand for the buddies of all groups, whatever their state. True on success. Blocks
    // until the answer is there. Any thread.
    virtual bool GetListByGroupId(ContactBuddyListData* pList, int& iState, int iGroupId, const std::string& strKey,
                                  AttrType eType) = 0;

    // Fills info for the buddy info.iContactId, which stays as it is; iFlag is 0. Non-zero: filled; zero: there is no
    // such buddy (any more). Any thread.
    virtual int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) = 0;

protected:
    CPresenceContactManager() = default;
    ~CPresenceContactManager() = default;
};
