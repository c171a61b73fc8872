// What a screen calls the attributes of people in LDAP directories, and which of them a directory of a common schema
// has.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// What its value is called on a screen: "City" for l; an attribute that is not known by its own name.
std::string labelOfAttribute(std::string_view attribute);

enum class LdapSchema {
    none,
    inetOrgPerson, // RFC 2798
    enterprise,    // as the directories of enterprises usually are
};

// Where people of this schema have what a phone looks for; of none, as little as any directory has.
struct LdapSchemaAttributes {
    std::vector<std::string> names;   // the first with a value counts
    std::vector<std::string> numbers; // all count
    std::vector<std::string> details; // shown beside a person
};

LdapSchemaAttributes attributesOf(LdapSchema schema);

} // namespace host
