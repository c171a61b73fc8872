// The presence buddies.
#include "platform/Presence.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform_check/Check.h"
#include "platform_check/Match.h"

#include <algorithm>
#include <climits>
#include <list>
#include <string>
#include <vector>

namespace platform_check {

namespace {

// The manager; null, with the trial skipped, on a phone without presence.
CPresenceContactManager* managerOf(Trial& trial) {
    CPresenceContactManager* manager = CPresenceContactManager::GetInstance();
    if (manager == nullptr) {
        trial.skip("the phone has no presence service");
    }
    return manager;
}

std::list<int> buddiesFor(CPresenceContactManager& manager, const std::string& key) {
    ContactBuddyListData found;
    int state = 1;
    return manager.GetListByGroupId(&found, state, 0, key, ATTR_TYPE_SEARCH) ? found.listContactId : std::list<int>();
}

bool detail(CPresenceContactManager& manager, int id, PresenceInfo& info) {
    info.iContactId = id;
    return manager.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0) != 0;
}

std::vector<std::string> numbersOf(const PresenceInfo& info) {
    std::vector<std::string> numbers;
    for (const Attribute& attribute : info.listAttr) {
        if (attribute.iType == ATTRIBUTE_TYPE_PHONE) {
            numbers.push_back(attribute.strValue);
        }
    }
    return numbers;
}

// Names and numbers of some buddies, and what anybody may type.
std::vector<std::string> typedFor(CPresenceContactManager& manager) {
    std::vector<std::string> typed = {"a", "2", "5"};
    for (const int id : buddiesFor(manager, "")) {
        PresenceInfo info;
        if (typed.size() < 30 && detail(manager, id, info)) {
            typed.push_back(info.strName);
            const std::vector<std::string> numbers = numbersOf(info);
            typed.insert(typed.end(), numbers.begin(), numbers.end());
        }
    }
    return typed;
}

void buddiesHaveDetails(Trial& trial) {
    CPresenceContactManager* manager = managerOf(trial);
    if (manager == nullptr) {
        return;
    }
    for (const int id : buddiesFor(*manager, "")) {
        PresenceInfo info;
        trial.expect(detail(*manager, id, info), "buddy %d was listed and has no details", id);
        trial.expect(info.iContactId == id, "the details of buddy %d are those of buddy %d", id, info.iContactId);
    }
}

void strangersHaveNone(Trial& trial) {
    CPresenceContactManager* manager = managerOf(trial);
    PresenceInfo info;
    trial.expect(manager == nullptr || !detail(*manager, INT_MIN, info), "there are details of a buddy that nobody is");
}

void buddiesMatchTheirKey(Trial& trial) {
    CPresenceContactManager* manager = managerOf(trial);
    if (manager == nullptr) {
        return;
    }
    for (const std::string& typed : typedFor(*manager)) {
        const std::string key = keyOf(typed);
        for (const int id : buddiesFor(*manager, key)) {
            PresenceInfo info;
            trial.expect(
                !detail(*manager, id, info) || isFound(info.strName, numbersOf(info), key),
                "buddy %d, \"%s\", was listed for the key \"%s\", which the match function does not find in it", id,
                info.strName.c_str(), key.c_str());
        }
    }
}

void longerKeysListLess(Trial& trial) {
    CPresenceContactManager* manager = managerOf(trial);
    if (manager == nullptr) {
        return;
    }
    for (const std::string& typed : typedFor(*manager)) {
        std::string shorterKey;
        std::list<int> shorter = buddiesFor(*manager, shorterKey);
        for (const std::string& key : keysWhileTyping(typed)) {
            std::list<int> longer = buddiesFor(*manager, key);
            for (const int id : longer) {
                trial.expect(std::find(shorter.begin(), shorter.end(), id) != shorter.end() ||
                                 key.rfind(shorterKey, 0) != 0,
                             "buddy %d was listed for \"%s\", and not for \"%s\"", id, key.c_str(), shorterKey.c_str());
            }
            shorter.swap(longer);
            shorterKey = key;
        }
    }
}

constexpr Check checks[] = {
    {"buddies have details", "CPresenceContactManager::GetContactDetail", "Presence.h",
     "Fills info for the buddy info.iContactId, which stays as it is", "a buddy that is found is shown",
     buddiesHaveDetails},
    {"strangers have none", "CPresenceContactManager::GetContactDetail", "Presence.h",
     "zero: there is no such buddy (any more)", "a buddy that was removed during a search is left out",
     strangersHaveNone},
    {"buddies match their key", "CPresenceContactManager::GetListByGroupId", "Presence.h",
     "Fills pList with the ids of the buddies that match strKey, matched as the directory modules match (Directory.h).",
     "a longer key keeps the rows that a source would offer for it", buddiesMatchTheirKey},
    {"a longer key lists less", "CPresenceContactManager::GetListByGroupId", "Directory.h",
     "a query for a longer key finds a part of what a query for its beginning found",
     "a longer key is answered from the rows at hand, and shows what a fresh search would", longerKeysListLess},
};

} // namespace

constexpr Group presence = {"presence", checks};

} // namespace platform_check
