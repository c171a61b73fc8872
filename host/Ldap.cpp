#include "platform/Ldap.h"

#include "host/PhoneCore.h"

namespace NS_TA {

CLdapAction::CLdapAction() {
    SetTypeId(3);
}

CLdapAction::~CLdapAction() = default;

} // namespace NS_TA

int Ldap_SearchAsync(const std::string& strKey, int, int iMaxCount, NS_TA::CTaskActionCallbackBase* pCallback,
                     void* pThread) {
    const auto phone = host::currentPhone();
    if (!phone || !pCallback) {
        return 0;
    }
    phone->interrupt("Ldap_SearchAsync");
    const bool started =
        phone->ldap.search(phone, {strKey, iMaxCount}, *pCallback, static_cast<host::MessageThread*>(pThread));
    phone->interrupt("Ldap_SearchAsync:answered");
    return started ? 1 : 0;
}
