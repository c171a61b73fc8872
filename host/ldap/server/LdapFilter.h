// Search filters for an LDAP directory (RFC 4515), built from templates and a typed key.
//
// A template is a filter in which %k stands for the key ("%%" for a percent sign). The key reaches the filter escaped,
// so that it is looked for literally: no key can widen or break the filter. All functions are pure; any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// bytes as an assertion value of a filter: "*", "(", ")", "\", NUL and every byte that is not part of valid UTF-8
// become \xx (RFC 4515, section 3).
std::string escapeFilterValue(std::string_view bytes);

// What is wrong with a template, for people; empty when it is a filter with %k inside of a value.
std::string filterTemplateProblem(std::string_view filterTemplate);

// The template with each word of the key in its place, in any of its spellings (text/Spellings.h): all words must
// match, in any order.
std::string nameFilter(std::string_view filterTemplate, std::string_view key);

// The template with the key's characters in its place and "*" between them: directories write blanks, dashes, dots and
// brackets between the digits of a number. Where the key may be typed in several ways (text/NumberForm.h), any of them
// matches. It finds more than the key (see LdapPeople.h).
std::string numberFilter(std::string_view filterTemplate, const std::string& key);

// Templates for people with the key in one of the attributes; the former asks for people that have a number at all.
std::string defaultNameFilter(const std::vector<std::string>& nameAttributes,
                              const std::vector<std::string>& numberAttributes);
std::string defaultNumberFilter(const std::vector<std::string>& numberAttributes);

// True when text is an attribute's name (RFC 4512, section 1.4: a letter, then letters, digits and hyphens).
bool isAttributeName(std::string_view text);

} // namespace host
