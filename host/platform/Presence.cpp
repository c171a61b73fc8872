#include "platform/Presence.h"

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/PhoneCore.h"
#include "host/sources/Failure.h"
#include "host/sources/SourceNames.h"

#include <string_view>

namespace host {

namespace {

std::size_t numbersOf(CPresenceContactManager& manager, const ContactBuddyListData& found) {
    std::size_t count = 0;
    for (const int id : found.listContactId) {
        PresenceInfo info;
        info.iContactId = id;
        if (manager.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0) != 0) {
            for (const Attribute& attribute : info.listAttr) {
                count += attribute.iType == ATTRIBUTE_TYPE_PHONE && !attribute.strValue.empty() ? 1U : 0U;
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
        CPresenceContactManager* manager = phone ? phone->presence.load() : nullptr;
        if (!manager || !pList) {
            return false;
        }
        phone->interrupt(PlatformFunction::listBuddies);
        TraceEvent event{.kind = TraceKind::sourceAsked, .source = sourceName::presence, .key = strKey};
        phone->trace(event);
        std::string error;
        bool succeeded = false;
        try {
            succeeded = manager->GetListByGroupId(pList, iState, iGroupId, strKey, eType);
            event.numbers = phone->traceSink ? numbersOf(*manager, *pList) : 0;
        } catch (...) {
            succeeded = false;
            error = reasonOfCurrentException();
            phone->tell(4, [&] { return "presence: the search for \"" + strKey + "\" failed: " + error; });
        }
        event.kind = TraceKind::sourceAnswered;
        event.contacts = pList->listContactId.size();
        event.failed = !succeeded;
        if (!succeeded) {
            event.problem = error.empty() ? "the buddies could not be listed" : std::string_view(error);
        }
        phone->trace(event);
        phone->interrupt(PlatformFunction::listBuddies, PlatformCall::Moment::answered);
        return succeeded;
    }

    int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) override {
        const auto phone = currentPhone();
        CPresenceContactManager* manager = phone ? phone->presence.load() : nullptr;
        if (!manager) {
            return 0;
        }
        phone->interrupt(PlatformFunction::buddyDetail);
        return manager->GetContactDetail(info, eType, iFlag);
    }
};

} // namespace

} // namespace host

CPresenceContactManager* CPresenceContactManager::GetInstance() {
    static host::PresenceFront front;
    const auto phone = host::currentPhone();
    return phone && phone->presence ? &front : nullptr;
}
