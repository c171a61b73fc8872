#include "host/files/ConfigFile.h"
#include "host/ldap/server/LdapConnection.h"
#include "host/ldap/server/LdapFilter.h"
#include "host/ldap/server/ServerLdap.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <charconv>
#include <map>

namespace host {

namespace {

// The section [ldap]: each value checked as it is read, each mistake noted.
class LdapSection {
public:
    LdapSection(const std::filesystem::path& file, std::vector<std::string>& problems)
        : m_config(file,
                   [&problems](const std::string& problem) {
                       // A file that was written just now is read again for each value.
                       if (std::find(problems.begin(), problems.end(), problem) == problems.end()) {
                           problems.push_back(problem);
                       }
                   }),
          m_problems(problems) {}

    void refuse(const std::string& key, const std::string& shown, const std::string& allowed) {
        m_problems.push_back(m_config.path().string() + ": [ldap] " + key + ": " + shown + ": " + allowed);
    }

    std::string text(const std::string& key) { return m_config.value("ldap", key).value_or(""); }

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

    int number(const std::string& key, int standard, int least, int most) {
        const std::string given = text(key);
        int value = standard;
        const char* const end = given.data() + given.size();
        const auto [stop, error] = std::from_chars(given.data(), end, value);
        if (!given.empty() && (error != std::errc() || stop != end || value < least || value > most)) {
            refuse(key, given, std::to_string(least) + " to " + std::to_string(most) + " is allowed");
            return standard;
        }
        return value;
    }

    void attributes(const std::string& key, std::vector<std::string>& names) {
        const std::string given = text(key);
        if (given.empty()) {
            return;
        }
        names.clear();
        for (std::size_t begin = 0; begin <= given.size();) {
            const std::size_t comma = std::min(given.find(',', begin), given.size());
            const std::string name =
                CommonAPI_TrimString(given.substr(begin, comma - begin), " \t", TRIM_TYPE_BOTH_ENDS);
            if (!isAttributeName(name)) {
                refuse(key, given, "names of attributes (letters, digits, hyphens) with commas between are allowed");
            }
            names.push_back(name);
            begin = comma + 1;
        }
    }

    std::string filter(const std::string& key) {
        std::string given = text(key);
        if (const std::string problem = given.empty() ? "" : filterTemplateProblem(given); !problem.empty()) {
            refuse(key, given, problem + (given.size() > 150 ? " (a line has at most 199 characters)" : ""));
        }
        return given;
    }

private:
    ConfigFile m_config;
    std::vector<std::string>& m_problems;
};

void checkTransport(LdapSection& section, const ServerLdapOptions& options) {
    try {
        if (parseLdapUrl(options.url).tls && options.startTls) {
            section.refuse("starttls", "on", "ldaps:// is protected already, only off is allowed with it");
        }
    } catch (const std::invalid_argument& allowed) {
        section.refuse("url", options.url.empty() ? "missing" : options.url, allowed.what());
    }
    if (!options.caFile.empty() && !std::filesystem::is_regular_file(options.caFile)) {
        section.refuse("ca_file", options.caFile, "an existing file of certificates (PEM) is allowed");
    }
    // A server takes a name without a password for an anonymous sign-in that succeeds (RFC 4513, section 5.1.2).
    if (options.bindDn.empty() != options.password.empty()) {
        section.refuse(options.bindDn.empty() ? "bind_dn" : "password", "empty",
                       "bind_dn and password are both given, or neither for anonymous use");
    }
}

void readLimits(LdapSection& section, LdapLimits& limits) {
    const auto read = [&](const std::string& key, std::size_t& limit, std::size_t unit, int most) {
        const int standard = static_cast<int>(limit / unit);
        limit = static_cast<std::size_t>(section.number(key, standard, 1, most)) * unit;
    };
    const std::size_t kilobyte = 1024;
    read("name_limit", limits.nameBytes, 1, 10'000);
    read("number_limit", limits.numberBytes, 1, 1'000);
    read("numbers_limit", limits.numbers, 1, 1'000);
    read("row_limit", limits.rows, 1, 100'000);
    read("answer_limit_kb", limits.answerBytes, kilobyte, 65'536);
    read("entry_limit_kb", limits.entryBytes, kilobyte, 65'536);
}

} // namespace

std::optional<ServerLdapOptions> readServerLdapOptions(const std::filesystem::path& file,
                                                       std::vector<std::string>& problems) {
    const std::size_t before = problems.size();
    LdapSection section(file, problems);
    ServerLdapOptions options;
    options.url = section.text("url");
    const std::map<std::string, bool> onOff = {{"on", true}, {"off", false}};
    const int longest = 60'000;
    section.choice("starttls", options.startTls, onOff);
    options.caFile = section.text("ca_file");
    section.choice("verify", options.verify, onOff);
    options.base = section.text("base");
    section.choice("scope", options.scope,
                   {{"base", LdapScope::base}, {"one", LdapScope::one}, {"sub", LdapScope::subtree}});
    options.bindDn = section.text("bind_dn");
    options.password = section.text("password");
    section.attributes("name_attributes", options.nameAttributes);
    section.attributes("number_attributes", options.numberAttributes);
    options.nameFilter = section.filter("name_filter");
    options.numberFilter = section.filter("number_filter");
    options.sizeLimit = section.number("size_limit", options.sizeLimit, 0, 10'000);
    readLimits(section, options.limits);
    options.timeLimit = std::chrono::milliseconds(
        section.number("time_limit_ms", static_cast<int>(options.timeLimit.count()), 1, longest));
    options.networkTimeout = std::chrono::milliseconds(
        section.number("network_timeout_ms", static_cast<int>(options.networkTimeout.count()), 1, longest));
    checkTransport(section, options);
    return problems.size() == before ? std::optional(options) : std::nullopt;
}

} // namespace host
