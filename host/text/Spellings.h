// The ways in which the same word is written, for a directory that compares letters one by one: Müller is also Mueller,
// Søren Soeren. What this phone compares itself needs no more than the forms of a name (NameForm.h).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::text {

// The word (converted, Key.h) as it is, and with one letter for two and two for one wherever people do so; ä, ö, ü and
// å also as the letter below the mark. Not the other way round: a directory that knows no marks finds those by itself,
// and every vowel of every word would make the question longer. At most 16. Any thread.
std::vector<std::string> spellingsOf(std::string_view word);

} // namespace host::text
