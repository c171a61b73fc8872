// Asks field after field for one key, as a search does that narrows its rows.
//
// Each thread keeps the key that it asked for last, folded and made ready; asking for another one costs as much as some
// ten fields. A field of ASCII is compared where it lies, any other is folded first. Any thread.
#pragma once

#include <string_view>

namespace host::text {

// Whether the folded key occurs in the folded text (Fold.h), asWord with neither letter nor digit beside it. An empty
// key occurs in everything.
bool isIn(std::string_view text, std::string_view key, bool asWord = false);

} // namespace host::text
