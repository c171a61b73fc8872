// What a typed key means, and the forms of names and numbers that keys of digits are looked for in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host::text {

// The key that is searched for when typed is typed: compatibility forms and letter case folded (NFKC_Casefold, UAX
// #15), blanks at both ends trimmed, a plain number reduced to its digits, "*" and "#". Accents stay: they are shown.
// Converting a converted key changes nothing.
std::string convertKey(std::string_view typed);

// Not empty, and digits, "*" and "#" only.
bool isKeypadKey(std::string_view key);

// The digits, "*" and "#" of what is plainly a number: those with blanks, dashes, dots and brackets between them and at
// most one "+" ahead of the first of them, and at least one of them. A "(0)" behind the beginning of an international
// number counts for nothing: "+44 (0)20" is +4420. Nothing for any other text.
std::optional<std::string> plainNumber(std::string_view text);

// A number as it is dialled: as plainNumber, but slashes may stand between the digits as well, a "+" in front is kept,
// and width makes no difference. Empty for a text of separators only. Nothing when there is anything else in it.
std::optional<std::string> dialableNumber(std::string_view text);

// Appends the keypad form of a name to out: what it folds to, with letters as the digits of their keys (ITU-T E.161),
// digits, "*" and "#" as they are, nothing for the rest. Digits that stand side by side in a name do so in its keypad
// form too.
void appendKeypadForm(std::string_view name, std::string& out);

} // namespace host::text
