// Looks for settings that nobody knows or that are out of place: misspelt names, keys in no section or in another one,
// headers that are not closed. Their values would be passed over without a word.
//
//     const KnownSettings known = {{"features", {"FeaturesRecentCallEnable"}}, {"ldap", {"mode", "url"}}};
//     const SettingsCheck check = checkSettings(bytes, "phone.ini", known);
//     // "phone.ini:4: start_tls is no setting of [ldap]; did you mean starttls?"
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using KnownSettings = std::map<std::string, std::vector<std::string>, std::less<>>; // the keys of each section

struct SettingsCheck {
    std::vector<std::string> problems; // "file:line: reason; what to do"
    std::set<std::string> doubtful;    // the known sections that such a line was probably meant for
};

// bytes: an INI file as ConfigFile.h reads it; file: what the problems call it. Any thread.
SettingsCheck checkSettings(std::string_view bytes, const std::string& file, const KnownSettings& known);

// The line, from 1, that sets key in this section; that of the section's name when none does; 0 without the section.
std::size_t lineOfSetting(std::string_view bytes, std::string_view section, std::string_view key);

} // namespace host
