#include "host/remote/refresh/RemoteOptions.h"

#include "host/remote/http/WebAddress.h"
#include "host/settings/SecretFile.h"
#include "host/settings/SettingsSection.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace host {

namespace {

void readAddress(SettingsSection& section, RemoteOptions& options) {
    options.url = section.text("url");
    std::string problem;
    if (!options.url.empty() && !parseWebAddress(options.url, problem)) {
        section.refuse("url", options.url.find('@') == std::string::npos ? withoutQuery(options.url) : "not usable",
                       problem);
    }
}

void readSignIn(SettingsSection& section, RemoteOptions& options) {
    options.user = section.text("user");
    const std::filesystem::path file = section.file("password_file");
    if (options.user.empty() != file.empty()) {
        section.refuse(options.user.empty() ? "user" : "password_file", "missing",
                       "write user and password_file, or neither of them");
    }
    if (!file.empty()) {
        std::string problem;
        if (auto password = readSecret(file, problem)) {
            options.password = *std::move(password);
        } else {
            section.refuse("password_file", file.string(), problem);
        }
    }
}

} // namespace

std::optional<RemoteOptions> readRemoteOptions(const std::filesystem::path& file, std::vector<std::string>& mistakes) {
    const std::size_t before = mistakes.size();
    SettingsSection section(file, "remote_directory", mistakes);
    const bool isSet = std::any_of(std::begin(remoteDirectoryKeys), std::end(remoteDirectoryKeys),
                                   [&](const char* key) { return !section.text(key).empty(); });
    if (!isSet) {
        return std::nullopt;
    }
    RemoteOptions options;
    readAddress(section, options);
    if (options.url.empty()) {
        section.refuse("url", "missing", "write the address of a vCard or CSV file, or of a CardDAV address book");
    }
    readSignIn(section, options);
    options.caFile = section.file("ca_file");
    if (!options.caFile.empty() && !std::filesystem::is_regular_file(options.caFile)) {
        section.refuse("ca_file", options.caFile.string(), "name an existing file of certificates (PEM)");
    }
    const int aWeek = 7 * 24 * 60;
    options.refresh =
        std::chrono::minutes(section.number("refresh_minutes", static_cast<int>(options.refresh.count()), 1, aWeek));
    options.networkTimeout = std::chrono::milliseconds(
        section.number("network_timeout_ms", static_cast<int>(options.networkTimeout.count()), 1, 60'000));
    options.timeLimit = std::chrono::milliseconds(
        section.number("time_limit_ms", static_cast<int>(options.timeLimit.count()), 1, 3'600'000));
    options.sizeLimit =
        static_cast<std::size_t>(section.number("size_limit_mb", static_cast<int>(options.sizeLimit >> 20U), 1, 256))
        << 20U;
    return mistakes.size() == before ? std::optional(std::move(options)) : std::nullopt;
}

} // namespace host
