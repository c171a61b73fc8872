#include "host/ldap/server/LdapAttributes.h"

#include "host/text/Fold.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

struct KindOf {
    std::string_view attribute;
    NumberKind kind;
};

constexpr KindOf kinds[] = {
    {"telephoneNumber", NumberKind::work},
    {"otherTelephone", NumberKind::work},
    {"ipPhone", NumberKind::work},
    {"otherIpPhone", NumberKind::work},
    {"companyPhone", NumberKind::work},
    {"mobile", NumberKind::mobile},
    {"mobileTelephoneNumber", NumberKind::mobile},
    {"otherMobile", NumberKind::mobile},
    {"homePhone", NumberKind::home},
    {"homeTelephoneNumber", NumberKind::home},
    {"otherHomePhone", NumberKind::home},
    {"facsimileTelephoneNumber", NumberKind::fax},
    {"fax", NumberKind::fax},
    {"otherFacsimileTelephoneNumber", NumberKind::fax},
    {"pager", NumberKind::other},
    {"pagerTelephoneNumber", NumberKind::other},
    {"otherPager", NumberKind::other},
};

struct FactOf {
    std::string_view attribute;
    FactKind kind;
};

constexpr FactOf facts[] = {
    {"o", FactKind::organisation},
    {"organizationName", FactKind::organisation},
    {"company", FactKind::organisation},
    {"ou", FactKind::department},
    {"organizationalUnitName", FactKind::department},
    {"department", FactKind::department},
    {"departmentNumber", FactKind::department},
    {"title", FactKind::title},
    {"l", FactKind::city},
    {"localityName", FactKind::city},
    {"mail", FactKind::email},
    {"rfc822Mailbox", FactKind::email},
    {"street", FactKind::address},
    {"streetAddress", FactKind::address},
    {"postalAddress", FactKind::address},
    {"labeledURI", FactKind::web},
    {"wWWHomePage", FactKind::web},
    {"description", FactKind::note},
};

} // namespace

NumberKind kindOfAttribute(std::string_view attribute) {
    const auto known = std::find_if(std::begin(kinds), std::end(kinds),
                                    [&](const KindOf& each) { return text::isSameName(each.attribute, attribute); });
    return known == std::end(kinds) ? NumberKind::unknown : known->kind;
}

std::string labelOfAttribute(std::string_view attribute) {
    const auto known = std::find_if(std::begin(facts), std::end(facts),
                                    [&](const FactOf& each) { return text::isSameName(each.attribute, attribute); });
    return known == std::end(facts) ? std::string(attribute) : labelOf(known->kind);
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
