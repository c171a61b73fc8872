#include "host/sources/Contact.h"

#include <algorithm>

namespace host {

namespace {

const std::string* firstOf(const Contact& contact, FactKind kind) {
    const auto fact = std::find_if(contact.facts.begin(), contact.facts.end(),
                                   [kind](const Contact::Fact& each) { return each.kind == kind; });
    return fact == contact.facts.end() ? nullptr : &fact->value;
}

} // namespace

std::string_view nameOf(NumberKind kind) {
    switch (kind) {
    case NumberKind::unknown:
        return "";
    case NumberKind::work:
        return "work";
    case NumberKind::mobile:
        return "mobile";
    case NumberKind::home:
        return "home";
    case NumberKind::fax:
        return "fax";
    case NumberKind::other:
        return "other";
    }
    return "";
}

std::string_view nameOf(FactKind kind) {
    switch (kind) {
    case FactKind::organisation:
        return "organisation";
    case FactKind::department:
        return "department";
    case FactKind::title:
        return "title";
    case FactKind::nickname:
        return "nickname";
    case FactKind::email:
        return "email";
    case FactKind::address:
        return "address";
    case FactKind::city:
        return "city";
    case FactKind::web:
        return "web";
    case FactKind::chat:
        return "chat";
    case FactKind::birthday:
        return "birthday";
    case FactKind::group:
        return "group";
    case FactKind::note:
        return "note";
    }
    return "";
}

std::string labelOf(FactKind kind) {
    std::string label(nameOf(kind));
    label.front() = static_cast<char>(label.front() - 'a' + 'A');
    return label;
}

std::string extraOf(const Contact& contact) {
    if (!contact.extra.empty()) {
        return contact.extra;
    }
    const std::string* organisation = firstOf(contact, FactKind::organisation);
    const std::string* department = firstOf(contact, FactKind::department);
    if (organisation && department) {
        return *organisation + ", " + *department;
    }
    for (const std::string* each : {organisation, department, firstOf(contact, FactKind::title),
                                    firstOf(contact, FactKind::city), firstOf(contact, FactKind::group)}) {
        if (each) {
            return *each;
        }
    }
    return {};
}

} // namespace host
