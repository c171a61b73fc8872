// One section of a configuration file (ConfigFile.h), each value checked as it is read, each mistake noted.
//
//     std::vector<std::string> mistakes;
//     SettingsSection section(file, "ldap", mistakes);
//     section.choice("scope", options.scope, {{"one", LdapScope::one}, {"sub", LdapScope::subtree}});
//     const int limit = section.number("size_limit", 200, 0, 10'000);
//     // "phone.ini:7: [ldap] scope: all; allowed are one, sub"
//
// Lines that cannot be read are mistakes as well: they may have been any setting. One thread.
#pragma once

#include "host/settings/ConfigFile.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class SettingsSection {
public:
    // mistakes outlives the section; new ones are appended.
    SettingsSection(std::filesystem::path file, std::string section, std::vector<std::string>& mistakes);

    // Notes a mistake: the value (in words where it is missing or not to be shown), and what to write instead.
    void refuse(const std::string& key, const std::string& shown, const std::string& remedy);

    // The value as it stands there; empty when there is none.
    std::string text(const std::string& key);

    // Sets value to what the word stands for; leaves it as it is when there is none, or one that is not allowed.
    template <typename Value>
    void choice(const std::string& key, Value& value, const std::map<std::string, Value>& allowed) {
        const std::string given = text(key);
        if (given.empty()) {
            return;
        }
        if (const auto found = allowed.find(given); found != allowed.end()) {
            value = found->second;
            return;
        }
        std::string names;
        for (const auto& [name, ignored] : allowed) {
            names.append(names.empty() ? "" : ", ").append(name);
        }
        refuse(key, given, "allowed are " + names);
    }

    // A whole number between the two; standard when there is none, or one that is not allowed.
    int number(const std::string& key, int standard, int least, int most);

    // A file that the value names, from the configuration file's folder on; empty when there is no value.
    std::filesystem::path file(const std::string& key);

private:
    const std::string m_section;
    ConfigFile m_config;
    std::vector<std::string>& m_mistakes;
};

} // namespace host
