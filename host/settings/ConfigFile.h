// The phone's configuration file: keys with values, in sections that are there for the reader's sake.
//
//     [features]
//     FeaturesRecentCallEnable = 1
//     [ldap]
//     mode = embedded
//
// A key is found whatever section it stands in, as the phone knows keys only; a key to which several sections give
// different values is ambiguous, counts as absent and is reported. Reading from one section by name is for the host's
// own settings. An indented line goes on with the value of the line before it, with nothing between them. Lines that
// are no INI lines, set a key of their section again or are too long do not count and are reported. The file is read at
// the first question and again when it has changed. Any thread.
#pragma once

#include "host/files/ReloadedFile.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class ConfigFile {
public:
    // A file that is not there has no keys, which is no problem. problemSink must not ask for values.
    ConfigFile(std::filesystem::path path, ProblemSink problemSink);

    // The value of key, whatever its section.
    std::optional<std::string> value(std::string_view key);

    // The value of key in this section.
    std::optional<std::string> value(std::string_view section, std::string_view key);

    // The value as an integer: decimal, with an optional sign and nothing behind it. Nothing for any other value.
    std::optional<int> integer(std::string_view key);
    std::optional<int> integer(std::string_view section, std::string_view key);

    const std::filesystem::path& path() const { return m_path; }

private:
    using Sections = std::map<std::string, std::string, std::less<>>; // a key's value in each
    using Keys = std::map<std::string, Sections, std::less<>>;

    static ReloadedFile<Keys>::Made read(TextWindow all, const std::string& file);
    std::shared_ptr<const Keys> keys();

    const std::filesystem::path m_path;
    const ProblemSink m_problemSink;
    ReloadedFile<Keys> m_file;
};

} // namespace host
