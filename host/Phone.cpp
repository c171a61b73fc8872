#include "host/Phone.h"

#include "host/PhoneCore.h"
#include "host/contacts/CallLogFile.h"
#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
#include "host/files/FileText.h"
#include "host/files/FileWatch.h"
#include "host/files/SettingsCheck.h"
#include "host/ldap/EmbeddedLdap.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/SourceNames.h"
#include "host/text/NumberForm.h"

#include <iterator>
#include <set>
#include <stdexcept>
#include <utility>

namespace host {

using ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK;
using ETL_MsgQueueHelper::MSG_CONFIG_CHANGED;

namespace {

constexpr std::chrono::milliseconds watchPeriod(500);
constexpr std::chrono::milliseconds usualLdapDelay(300);

// The core is held weakly: what reports to it may outlive it.
ProblemSink problemSink(const std::shared_ptr<PhoneCore>& core) {
    return [weak = std::weak_ptr(core)](const std::string& problem) {
        if (const auto alive = weak.lock()) {
            alive->addProblem(problem);
        }
    };
}

std::shared_ptr<LdapDirectory> serverLdap(const std::shared_ptr<PhoneCore>& core) {
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

// Reports the settings that nobody knows, and gives the sections that some of them were probably meant for.
std::set<std::string> reportUnknownSettings(PhoneCore& core) {
    KnownSettings known = {{"features", {"FeaturesRecentCallEnable"}},
                           {"dialling", {"country_code", "trunk_prefix", "international_prefix"}},
                           {"ldap", {"mode", "delay_ms"}}};
    known["ldap"].insert(known["ldap"].end(), std::begin(serverLdapKeys), std::end(serverLdapKeys));
    std::string error;
    const auto text = readFile(core.configFile.path(), error);
    const SettingsCheck check = checkSettings(text ? text->bytes : "", core.configFile.path().string(), known);
    for (const std::string& problem : check.problems) {
        core.addProblem(problem);
    }
    return check.doubtful;
}

// How the section [dialling] of the configuration says that numbers are dialled; as they are when it cannot be used.
text::DiallingRules configuredDialling(PhoneCore& core) {
    const auto value = [&core](const char* key) { return core.configFile.value("dialling", key).value_or(""); };
    text::DiallingRules rules{value("country_code"), value("trunk_prefix"), value("international_prefix")};
    if (const std::string problem = text::problemOf(rules); !problem.empty()) {
        core.addProblem(core.configFile.path().string() + ": [dialling] " + problem);
        return {};
    }
    return rules;
}

struct ConfiguredLdap {
    std::shared_ptr<LdapDirectory> directory;        // null: none that can be used
    std::shared_ptr<const ContactLookup> contacts{}; // of a directory that answers from a file
};

// The directory that the section [ldap] of the configuration describes.
ConfiguredLdap configuredLdap(const std::shared_ptr<PhoneCore>& core) {
    ConfigFile& config = core->configFile;
    if (reportUnknownSettings(*core).contains("ldap")) {
        core->addProblem(config.path().string() +
                         ": LDAP is not asked, since a misspelt or misplaced setting may be what protects the "
                         "password; mend it");
        return {};
    }
    const std::string mode = config.value("ldap", "mode").value_or("embedded");
    if (mode == "server") {
        return {serverLdap(core)};
    }
    if (mode != "embedded") {
        core->addProblem(config.path().string() + ": [ldap] mode = " + mode +
                         " is not known; write embedded or server");
        return {};
    }
    const std::chrono::milliseconds delay(config.integer("ldap", "delay_ms").value_or(usualLdapDelay.count()));
    if (config.value("ldap", "delay_ms") && !config.integer("ldap", "delay_ms")) {
        core->addProblem(config.path().string() + ": [ldap] delay_ms is no whole number; " +
                         std::to_string(usualLdapDelay.count()) + " is taken");
    }
    const auto contacts =
        std::make_shared<FileDirectory>(core->realPath("/config/contacts/ldap_directory.csv"), problemSink(core));
    return {std::make_shared<EmbeddedLdap>(core->kernel, contacts, core->options.ldapDelay.value_or(delay)), contacts};
}

} // namespace

Phone::Phone(PhoneOptions options) : m_core(std::make_shared<PhoneCore>(std::move(options))) {
    setCurrentPhone(m_core);
    try {
        text::setDiallingRules(m_core->options.contactFiles ? configuredDialling(*m_core) : text::DiallingRules());
        if (m_core->options.contactFiles) {
            openContactFiles();
        }
    } catch (...) {
        goDown();
        throw;
    }
}

void Phone::openContactFiles() {
    const ProblemSink sink = problemSink(m_core);
    const auto open = [&](Source source, std::string_view name, std::string_view path) {
        const auto directory = std::make_shared<FileDirectory>(m_core->realPath(path), sink);
        setSource(source, directory);
        m_lookups[name] = directory;
    };
    open(Source::localDirectory, sourceName::localDirectory, "/config/contacts/local_directory.csv");
    open(Source::remoteDirectory, sourceName::remoteDirectory, "/config/contacts/remote_directory.csv");
    open(Source::broadSoftDirectory, sourceName::broadSoftDirectory, "/config/contacts/broadsoft_directory.csv");
    m_callLog = std::make_shared<CallLogFile>(m_core->realPath("/config/contacts/call_log.csv"), sink);
    setSource(Source::callLog, m_callLog);
    setRecentCalls(m_callLog);
    m_lookups[sourceName::callLog] = m_callLog;
    m_presence = std::make_shared<PresenceFile>(m_core->realPath("/config/contacts/presence_buddies.json"), sink);
    setPresence(m_presence.get());
    m_lookups[sourceName::presence] = m_presence;
    ConfiguredLdap ldap = configuredLdap(m_core);
    setLdap(std::move(ldap.directory));
    m_lookups[sourceName::ldap] = std::move(ldap.contacts);
}

Phone::~Phone() {
    m_watch.reset();
    goDown();
}

void Phone::goDown() {
    m_core->kernel.stop();
    setLdap(nullptr);
    setPresence(nullptr);
    setCurrentPhone(nullptr);
}

Kernel& Phone::kernel() {
    return m_core->kernel;
}

const PhoneOptions& Phone::options() const {
    return m_core->options;
}

void Phone::setSource(Source source, std::shared_ptr<ContactSource> contacts) {
    m_core->source(source).set(std::move(contacts));
}

void Phone::setRecentCalls(std::shared_ptr<RecentCalls> calls) {
    m_core->recentCalls.set(std::move(calls));
}

void Phone::setLdap(std::shared_ptr<LdapDirectory> directory) {
    m_core->ldap.setDirectory(std::move(directory));
}

void Phone::setPresence(CPresenceContactManager* manager) {
    m_core->presence = manager;
}

void Phone::addOutgoingCall(const GeneralDirItemData& call) {
    if (m_callLog) {
        m_callLog->add(call);
    }
}

const ContactLookup* Phone::lookup(std::string_view sourceName) const {
    const auto found = m_lookups.find(sourceName);
    return found == m_lookups.end() ? nullptr : found->second.get();
}

void Phone::setConfig(std::string_view key, int value) {
    m_core->setConfig(key, value);
}

void Phone::announceConfigChange(long long what) {
    m_core->deliver(MSG_CONFIG_CHANGED, what);
}

void Phone::watchSourceList() {
    if (kernel().driver() == Driver::live && !m_watch) {
        m_watch = std::make_unique<FileWatch>(m_core->realPath("/config/data/wideseek.xml"), watchPeriod,
                                              [this] { announceConfigChange(CFG_CHANGE_WIDESEEK); });
    }
}

bool Phone::isIdle() const {
    const LdapModule& ldap = m_core->ldap;
    const auto queries = ldap.queryCount();
    return !ldap.isBusy() && m_core->kernel.pending() == 0 && ldap.queryCount() == queries;
}

std::vector<std::string> Phone::problems(std::size_t from) const {
    return m_core->problems.from(from);
}

void Phone::setTrace(TraceSink* sink) {
    m_core->traceSink = sink;
}

bool Phone::answerLdapAgain(const std::string& key, LdapAnswer answer) {
    return m_core->ldap.answerAgain(key, std::move(answer));
}

void Phone::failAllocation(std::size_t nth) {
    failTrackedAllocation(nth);
}

std::vector<TrackedBlocks> Phone::outstanding() {
    return trackedBlocks();
}

void Phone::setInterruption(Interruption interruption) {
    m_core->interruption.set(interruption ? std::make_shared<const Interruption>(std::move(interruption)) : nullptr);
}

} // namespace host
