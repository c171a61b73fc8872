// One line of a vCard, taken apart: "item1.TEL;TYPE=work,voice:+44 20 7946 0070".
//
//     const std::string_view name = propertyName(line);
//     if (const auto property = readProperty(line)) { use(property->value); }
#pragma once

#include "host/sources/Contact.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct VCardProperty {
    std::string_view group; // "item1"; empty: none
    std::string_view name;  // in the file's letter case
    std::string_view value; // as it is written
    std::string_view charset;
    bool quotedPrintable = false;
    bool base64 = false;
    NumberKind kind = NumberKind::unknown; // by its types: what a number of this property is for
};

// The name at the front of the line, without its group: "TEL". Whatever stands there when it is no property.
std::string_view propertyName(std::string_view line);

// Whether the line says that its value is quoted-printable: it may have soft line breaks then.
bool isQuotedPrintable(std::string_view line);

// Nothing when there is no colon behind the name and its parameters. The result is valid as long as line.
std::optional<VCardProperty> readProperty(std::string_view line);

// The bytes of quoted-printable text (RFC 2045, section 6.7); what is none is kept as it is.
std::string fromQuotedPrintable(std::string_view text);

// The parts of a value between unescaped separators, each without its escapes (RFC 6350, section 3.4). Of a value of
// vCard 2.1 only separators are escaped.
std::vector<std::string> partsOf(std::string_view value, char separator, bool old);

} // namespace host
