// Contacts in LDIF (RFC 2849), as directories and address books write it: entries with a name or a number, by the
// attributes of inetOrgPerson (RFC 2798) and their like. Values that stand in other files are not fetched.
#pragma once

#include "host/formats/ContactExport.h"

#include <string>
#include <string_view>

namespace host {

// Whether the text begins as LDIF does: with its version or an entry.
bool isLdif(std::string_view text);

// Reads the entries; text is UTF-8. Records that change an entry are skipped and reported. As readExport.
ReadExport readLdif(std::string_view text, const std::string& file, const TakeExported& take);

// The bytes of base64 text (RFC 4648, section 4), as far as it is that.
std::string fromBase64(std::string_view text);

} // namespace host
