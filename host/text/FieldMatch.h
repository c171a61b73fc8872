// Asks field after field for one key, as a search does that narrows its rows.
//
// A key of keypad digits is looked for in the field as it is: a number, or a name's keypad forms. Any other key is one
// of text, and the field a name in which each of its words must stand (NameForm.h).
//
// Each thread keeps the key that it asked for last, made ready; asking for another one costs as much as some ten
// fields. What is ASCII is found where the field lies. A field is brought into its forms when it is not ASCII and the
// key does not stand in it as it is. Any thread.
#pragma once

#include <string_view>

namespace host::text {

// Whether the converted key (Key.h) is found in the field. A key without anything to look for is found in everything.
bool isIn(std::string_view field, std::string_view key);

} // namespace host::text
