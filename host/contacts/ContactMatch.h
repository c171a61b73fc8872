// The rule which contact matches a key.
//
// A key of keypad digits (CommonAPI_IsSearchByT9) matches when one of the contact's forms of digits contains it: each
// number in its forms (text/NumberForm.h), and the keypad forms of the name. Any other key matches when each of its
// words stands in one of the name's forms (text/NameForm.h); a key without words matches every contact. This is what
// the search module decides with the phone's string helpers when it narrows a result, so a source that answers by this
// rule and a narrowed result agree.
//
// The forms are appended to bytes of the caller's, each followed by text::formSeparator, so that a source can keep
// those of all its contacts in one piece and look through them at once (ContactIndex.h).
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A converted key made ready.
struct MatchKey {
    explicit MatchKey(std::string_view key);

    bool digits = false;            // looked for in the forms of digits, else in those of the name
    std::vector<std::string> words; // a key of digits is one
};

void appendNameForms(const DirectorySearchData& contact, std::string& out);
void appendDigitForms(const DirectorySearchData& contact, std::string& out);

// Whether this one contact matches. Any thread.
bool matches(const DirectorySearchData& contact, const MatchKey& key);

} // namespace host
