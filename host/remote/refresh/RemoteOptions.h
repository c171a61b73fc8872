// Where the remote directory is and how it is asked: the section [remote_directory] of the phone's configuration file.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Each with its key.
struct RemoteOptions {
    std::string url;                                // url: of a vCard or CSV file, or of a CardDAV address book
    std::string user;                               // user: empty: nobody signs in
    std::string password;                           // of password_file; never logged
    std::filesystem::path caFile;                   // ca_file: trusted certificates (PEM); empty: the system's
    std::chrono::minutes refresh{15};               // refresh_minutes: how often the server is asked for what is new
    std::chrono::milliseconds networkTimeout{5000}; // network_timeout_ms: for a connection to be made
    std::chrono::milliseconds timeLimit{60'000};    // time_limit_ms: for each answer to be complete
    std::size_t sizeLimit = 64U << 20U;             // size_limit_mb: everything that a refresh may bring, in bytes
};

// The keys that readRemoteOptions looks at.
inline constexpr const char* remoteDirectoryKeys[] = {
    "url",           "user",         "password_file", "ca_file", "refresh_minutes", "network_timeout_ms",
    "time_limit_ms", "size_limit_mb"};

// Reads the section. Nothing when it names no url, and when there are mistakes, each of which is appended to mistakes
// as SettingsSection.h words it: no server is asked with half of its settings. Files that are named are looked for from
// the configuration file's folder on. Any thread.
std::optional<RemoteOptions> readRemoteOptions(const std::filesystem::path& file, std::vector<std::string>& mistakes);

} // namespace host
