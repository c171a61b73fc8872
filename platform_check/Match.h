// Matching as the search does it: which of a contact's fields a key is looked for in.
#pragma once

#include <string>
#include <vector>

namespace platform_check {

// The key that is searched for when typed is typed.
std::string keyOf(const std::string& typed);

// The keys that come up while text is typed, character by character, the first few of them.
std::vector<std::string> keysWhileTyping(const std::string& text);

// Whether a contact is among those that a converted key finds: a key of digits in its numbers and in the keypad form of
// its name, any other in its name.
bool isFound(const std::string& name, const std::vector<std::string>& numbers, const std::string& key);

} // namespace platform_check
