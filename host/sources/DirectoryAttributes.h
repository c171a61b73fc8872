// What the usual attributes of people in directories hold (RFC 4519, RFC 4524, RFC 2798 and what enterprises add), for
// whoever asks a directory (LDAP) and whoever reads its export (LDIF). Names are the same in any case of their letters.
// Any thread.
#pragma once

#include "host/sources/Contact.h"

#include <optional>
#include <string_view>

namespace host {

// Which kind of number stands there; unknown where none is known to stand.
NumberKind kindOfAttribute(std::string_view attribute);

// Which fact stands there; nothing where none is known to stand.
std::optional<FactKind> factOfAttribute(std::string_view attribute);

} // namespace host
