#include "host/ConfiguredSources.h"

#include "host/contacts/FileDirectory.h"
#include "host/files/FileText.h"
#include "host/ldap/EmbeddedLdap.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/remote/RemoteDirectory.h"
#include "host/remote/http/CurlTransport.h"
#include "host/settings/SettingsCheck.h"
#include "host/settings/SettingsSection.h"
#include "platform/MsgQueueHelper.h"

#include <iterator>
#include <random>
#include <stdexcept>
#include <utility>

namespace host {

using ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK;
using ETL_MsgQueueHelper::MSG_CONFIG_CHANGED;

namespace {

constexpr std::chrono::milliseconds usualLdapDelay(300);

} // namespace

// The core is held weakly: what reports to it may outlive it.
ProblemSink problemSink(const std::shared_ptr<PhoneCore>& core) {
    return [weak = std::weak_ptr(core)](const std::string& problem) {
        if (const auto alive = weak.lock()) {
            alive->addProblem(problem);
        }
    };
}

namespace {

std::shared_ptr<ServerLdapDirectory> serverLdap(const std::shared_ptr<PhoneCore>& core) {
    const std::filesystem::path& config = core->configFile.path();
    std::vector<std::string> mistakes;
    const auto options = readServerLdapOptions(config, mistakes);
    for (const std::string& mistake : mistakes) {
        core->addProblem(mistake);
    }
    if (!options) {
        return nullptr;
    }
    try {
        return makeServerLdap(*options, [weak = core->weak_from_this()](const std::string& line) {
            if (const auto alive = weak.lock()) {
                alive->report(6, "LDAP: " + line);
            }
        });
    } catch (const std::invalid_argument& reason) {
        core->addProblem(config.string() + ": [ldap] " + reason.what());
        return nullptr;
    }
}

} // namespace

std::set<std::string> reportUnknownSettings(PhoneCore& core) {
    KnownSettings known = {{"features", {"FeaturesRecentCallEnable"}},
                           {"dialling", {"country_code", "trunk_prefix", "international_prefix"}},
                           {"ldap", {"mode", "delay_ms"}}};
    known["remote_directory"] = {std::begin(remoteDirectoryKeys), std::end(remoteDirectoryKeys)};
    known["ldap"].insert(known["ldap"].end(), std::begin(serverLdapKeys), std::end(serverLdapKeys));
    std::string error;
    const auto text = readFile(core.configFile.path(), error);
    const SettingsCheck check = checkSettings(text ? text->bytes : "", core.configFile.path().string(), known);
    for (const std::string& problem : check.problems) {
        core.addProblem(problem);
    }
    return check.doubtful;
}

text::DiallingRules configuredDialling(PhoneCore& core) {
    const auto value = [&core](const char* key) { return core.configFile.value("dialling", key).value_or(""); };
    text::DiallingRules rules{value("country_code"), value("trunk_prefix"), value("international_prefix")};
    if (const std::string problem = text::problemOf(rules); !problem.empty()) {
        core.addProblem(core.configFile.path().string() + ": [dialling] " + problem);
        return {};
    }
    return rules;
}

ConfiguredLdap configuredLdap(const std::shared_ptr<PhoneCore>& core) {
    ConfigFile& config = core->configFile;
    const std::string mode = config.value("ldap", "mode").value_or("embedded");
    if (mode == "server") {
        const auto server = serverLdap(core);
        return {core->options.network ? server : nullptr, nullptr, server};
    }
    if (mode != "embedded") {
        std::vector<std::string> mistakes;
        SettingsSection(config.path(), "ldap", mistakes).refuse("mode", mode, "write embedded or server");
        core->addProblem(mistakes.back());
        return {};
    }
    const std::chrono::milliseconds delay(config.integer("ldap", "delay_ms").value_or(usualLdapDelay.count()));
    if (config.value("ldap", "delay_ms") && !config.integer("ldap", "delay_ms")) {
        core->addProblem(config.path().string() + ": [ldap] delay_ms is no whole number; " +
                         std::to_string(usualLdapDelay.count()) + " is taken");
    }
    const auto contacts =
        std::make_shared<FileDirectory>(core->realPath("/config/contacts/ldap_directory.csv"), problemSink(core));
    return {std::make_shared<EmbeddedLdap>(core->kernel, contacts, core->options.ldapDelay.value_or(delay)), contacts,
            nullptr};
}

ConfiguredRemote configuredRemote(const std::shared_ptr<PhoneCore>& core) {
    std::vector<std::string> mistakes;
    const auto options = readRemoteOptions(core->configFile.path(), mistakes);
    for (const std::string& mistake : mistakes) {
        core->addProblem(mistake);
    }
    if (!options) {
        return {!mistakes.empty()};
    }
    const auto report = [weak = core->weak_from_this()](const std::string& line) {
        if (const auto alive = weak.lock()) {
            alive->report(6, "remote directory: " + line);
        }
    };
    if (!options->password.empty() && !options->url.starts_with("https:")) {
        report("the password is sent unprotected; use https:// in [remote_directory] url");
    }
    const auto announce = [weak = std::weak_ptr(core)] {
        if (const auto alive = weak.lock()) {
            alive->deliver(MSG_CONFIG_CHANGED, CFG_CHANGE_WIDESEEK); // the next key asks all sources
        }
    };
    const auto spread = [random = std::minstd_rand(std::random_device()())]() mutable {
        return std::uniform_real_distribution<double>()(random);
    };
    return {true, std::make_shared<RemoteDirectory>(
                      *options, core->realPath("/config/cache/remote_directory.cbor"),
                      makeCurlTransport({options->user, options->password, options->caFile.string(),
                                         options->networkTimeout, options->timeLimit}),
                      RemoteDirectory::Surroundings{
                          .problem = problemSink(core), .log = report, .firstContacts = announce, .spread = spread})};
}

void reportDoubt(PhoneCore& core, const std::string& who) {
    core.addProblem(core.configFile.path().string() + ": " + who +
                    " is not asked, since a misspelt or misplaced setting may be what protects the password; mend it");
}

} // namespace host
