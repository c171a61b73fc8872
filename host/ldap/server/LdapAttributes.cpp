#include "host/ldap/server/LdapAttributes.h"

#include "host/sources/DirectoryAttributes.h"

namespace host {

std::string labelOfAttribute(std::string_view attribute) {
    const auto known = factOfAttribute(attribute);
    return known ? labelOf(*known) : std::string(attribute);
}

LdapSchemaAttributes attributesOf(LdapSchema schema) {
    switch (schema) {
    case LdapSchema::none:
        break;
    case LdapSchema::inetOrgPerson:
        return {{"displayName", "cn"},
                {"telephoneNumber", "mobile", "homePhone", "facsimileTelephoneNumber"},
                {"o", "ou", "departmentNumber", "title", "l", "mail"}};
    case LdapSchema::enterprise:
        return {{"displayName", "cn"},
                {"telephoneNumber", "otherTelephone", "ipPhone", "mobile", "otherMobile", "homePhone", "otherHomePhone",
                 "facsimileTelephoneNumber"},
                {"company", "department", "title", "physicalDeliveryOfficeName", "l", "mail"}};
    }
    return {{"cn"}, {"telephoneNumber", "mobile"}, {}};
}

} // namespace host
