// Text as it is compared: without letter case, accents and width.
//
// The folded form of a text is the concatenation of the folded forms of its characters. What a text begins with
// therefore folds to what its folded form begins with; narrowing a result from a key to a longer key rests on this.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host::text {

// Unicode's White_Space (UAX #44); false for -1.
bool isBlank(std::int32_t codePoint);

// text without the blanks at both ends.
std::string_view trimBlanks(std::string_view text);

// Appends the folded form of text to out: full case folding and compatibility decomposition (Unicode, UAX #15), without
// combining marks and invisible characters (Default_Ignorable_Code_Point). Letters whose stroke or ligature Unicode
// does not decompose become what people type for them (o for ø, ae for æ). Bytes that are not UTF-8, and NUL, stay as
// they are.
void appendFolded(std::string_view text, std::string& out);
std::string folded(std::string_view text);

// The small form of an ASCII letter; any other byte as it is.
constexpr char lowerAscii(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// Whether two names are the same in any case of their ASCII letters, as names of formats and protocols are compared
// (attributes of LDAP: RFC 4512, section 1.4; properties of a vCard: RFC 6350, section 3.3).
bool isSameName(std::string_view a, std::string_view b);

} // namespace host::text
