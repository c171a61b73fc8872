#include "host/sources/DirectoryAttributes.h"

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
    {"cellPhone", NumberKind::mobile},
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
    const auto* const known = std::find_if(std::begin(kinds), std::end(kinds), [&](const KindOf& each) {
        return text::isSameName(each.attribute, attribute);
    });
    return known == std::end(kinds) ? NumberKind::unknown : known->kind;
}

std::optional<FactKind> factOfAttribute(std::string_view attribute) {
    const auto* const known = std::find_if(std::begin(facts), std::end(facts), [&](const FactOf& each) {
        return text::isSameName(each.attribute, attribute);
    });
    return known == std::end(facts) ? std::nullopt : std::optional(known->kind);
}

} // namespace host
