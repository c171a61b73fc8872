// Asks field after field for one key, as a search does that narrows its rows.
//
// Each thread keeps the key that it asked for last, folded and made ready; asking for another one costs as much as some
// ten fields. A short key that folds to ASCII is found where the field lies. A field is folded first when it is not
// ASCII and the key does not stand in it as it is, or for any other key. Any thread.
#pragma once

#include <string_view>

namespace host::text {

// Whether the folded key occurs in the folded text (Fold.h). An empty key occurs in everything.
bool isIn(std::string_view text, std::string_view key);

} // namespace host::text
