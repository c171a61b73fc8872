// The rule which contact matches a key.
//
// A key of keypad digits (CommonAPI_IsSearchByT9) matches when one of the contact's forms of digits contains it: each
// number without "+" at its ends, and the keypad form of the name. Any other key matches when the name contains it. Key
// and forms are folded first (text/Fold.h); a key that folds to nothing matches every contact. This is what the search
// module decides with the phone's string helpers when it narrows a result, so a source that answers by this rule and a
// narrowed result agree.
//
// The forms are appended to bytes of the caller's, each followed by formSeparator, so that a source can keep those of
// all its contacts in one piece and look through them at once (ContactIndex.h).
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <string>
#include <string_view>

namespace host {

// Part of no UTF-8 text, and of no key of digits.
inline constexpr char formSeparator = '\xFF';

// A converted key made ready.
struct MatchKey {
    explicit MatchKey(std::string_view key);

    bool digits = false; // looked for in the forms of digits, else in the name
    std::string folded;  // may contain formSeparator when it is not digits
};

void appendNameForm(const DirectorySearchData& contact, std::string& out);
void appendDigitForms(const DirectorySearchData& contact, std::string& out);

// Whether this one contact matches. Any thread.
bool matches(const DirectorySearchData& contact, const MatchKey& key);

} // namespace host
