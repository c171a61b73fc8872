#include "platform/Ldap.h"

#include "host/PhoneCore.h"

#include <new>

namespace NS_TA {

CLdapAction::CLdapAction() {
    SetTypeId(TASK_TYPE_LDAP);
}

CLdapAction::~CLdapAction() = default;

} // namespace NS_TA

int Ldap_SearchAsync(const std::string& strKey, int, int iMaxCount, NS_TA::CTaskActionCallbackBase* pCallback,
                     void* pThread) {
    const auto phone = host::currentPhone();
    if (!phone || !pCallback) {
        return 0;
    }
    phone->interrupt(host::PlatformFunction::searchLdap);
    bool started = false;
    try {
        started = phone->ldap.search({strKey, iMaxCount}, *pCallback, static_cast<host::MessageThread*>(pThread));
    } catch (const std::bad_alloc&) {
        phone->report(2, "LDAP: a query is lost: there is no memory for it");
    }
    phone->interrupt(host::PlatformFunction::searchLdap, host::PlatformCall::Moment::answered);
    return started ? 1 : 0;
}
