#include "platform/Presence.h"

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/PhoneCore.h"

namespace host {

namespace {

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
