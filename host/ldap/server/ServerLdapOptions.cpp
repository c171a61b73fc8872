#include "host/ldap/server/LdapAttributes.h"
#include "host/ldap/server/LdapConnection.h"
#include "host/ldap/server/LdapFilter.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/settings/SettingsSection.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <map>

namespace host {

namespace {

void readAttributes(SettingsSection& section, const std::string& key, std::vector<std::string>& names) {
    const std::string given = section.text(key);
    if (given.empty()) {
        return;
    }
    names.clear();
    for (std::size_t begin = 0; begin <= given.size();) {
        const std::size_t comma = std::min(given.find(',', begin), given.size());
        const std::string name = CommonAPI_TrimString(given.substr(begin, comma - begin), " \t", TRIM_TYPE_BOTH_ENDS);
        if (!isAttributeName(name)) {
            section.refuse(key, given, "write names of attributes (letters, digits, hyphens) with commas between");
        }
        names.push_back(name);
        begin = comma + 1;
    }
}

std::string readFilter(SettingsSection& section, const std::string& key) {
    std::string given = section.text(key);
    if (const std::string problem = given.empty() ? "" : filterTemplateProblem(given); !problem.empty()) {
        section.refuse(key, given, problem + (given.size() > 150 ? " (a line has at most 199 characters)" : ""));
    }
    return given;
}

void checkTransport(SettingsSection& section, const ServerLdapOptions& options) {
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

void readLimits(SettingsSection& section, LdapLimits& limits) {
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
    SettingsSection section(file, "ldap", problems);
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
    LdapSchema schema = LdapSchema::none;
    section.choice("schema", schema,
                   {{"inetorgperson", LdapSchema::inetOrgPerson}, {"enterprise", LdapSchema::enterprise}});
    LdapSchemaAttributes attributes = attributesOf(schema);
    options.nameAttributes = std::move(attributes.names);
    options.numberAttributes = std::move(attributes.numbers);
    options.detailAttributes = std::move(attributes.details);
    readAttributes(section, "name_attributes", options.nameAttributes);
    readAttributes(section, "number_attributes", options.numberAttributes);
    readAttributes(section, "detail_attributes", options.detailAttributes);
    options.nameFilter = readFilter(section, "name_filter");
    options.numberFilter = readFilter(section, "number_filter");
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
