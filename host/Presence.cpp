#include "platform/Presence.h"

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/PhoneCore.h"

namespace host {

namespace {

std::size_t numbersOf(CPresenceContactManager& manager, const ContactBuddyListData& found) {
    constexpr int phoneNumber = 2; // type of an attribute
    std::size_t count = 0;
    for (const int id : found.listContactId) {
        PresenceInfo info;
        info.iContactId = id;
        if (manager.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0) != 0) {
            for (const Attribute& attribute : info.listAttr) {
                count += attribute.iType == phoneNumber && !attribute.strValue.empty() ? 1U : 0U;
            }
        }
    }
    return count;
}

// Stands before the phone's manager, so that what is asked and answered is traced whoever the manager is.
class PresenceFront final : public CPresenceContactManager {
public:
    bool GetListByGroupId(ContactBuddyListData* pList, int& iState, int iGroupId, const std::string& strKey,
                          AttrType eType) override {
        const auto phone = currentPhone();
        CPresenceContactManager* manager = phone ? phone->presence() : nullptr;
        if (!manager || !pList) {
            return false;
        }
        phone->interrupt("GetListByGroupId");
        TraceEvent event{.kind = TraceKind::sourceAsked, .source = "presence", .key = strKey};
        phone->trace(event);
        const bool succeeded = manager->GetListByGroupId(pList, iState, iGroupId, strKey, eType);
        event.kind = TraceKind::sourceAnswered;
        event.contacts = pList->listContactId.size();
        event.numbers = phone->isTraced() ? numbersOf(*manager, *pList) : 0;
        event.failed = !succeeded;
        event.problem = succeeded ? "" : "the buddies could not be listed";
        phone->trace(event);
        phone->interrupt("GetListByGroupId:answered");
        return succeeded;
    }

    int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) override {
        const auto phone = currentPhone();
        CPresenceContactManager* manager = phone ? phone->presence() : nullptr;
        if (!manager) {
            return 0;
        }
        phone->interrupt("GetContactDetail");
        return manager->GetContactDetail(info, eType, iFlag);
    }
};

} // namespace

} // namespace host

CPresenceContactManager* CPresenceContactManager::GetInstance() {
    static host::PresenceFront front;
    const auto phone = host::currentPhone();
    return phone && phone->presence() ? &front : nullptr;
}
