#include "host/Phone.h"

#include "host/CallLogFile.h"
#include "host/ConfigFile.h"
#include "host/EmbeddedLdap.h"
#include "host/FileDirectory.h"
#include "host/FileWatch.h"
#include "host/HeldLocks.h"
#include "host/PhoneCore.h"
#include "host/PresenceFile.h"
#include "host/ServerLdap.h"
#include "host/TrackedBlocks.h"

#include <stdexcept>
#include <utility>

namespace host {

namespace {

constexpr unsigned int configChanged = 0x10007;
constexpr long long sourceListChanged = 52;
constexpr std::chrono::milliseconds watchPeriod(500);
constexpr std::chrono::milliseconds usualLdapDelay(300);

} // namespace

struct Phone::State {
    std::shared_ptr<PhoneCore> core;
    std::unique_ptr<PresenceFile> presence;
    std::unique_ptr<FileWatch> watch;

    ProblemSink problemSink() const;
    void openContactFiles();
    std::shared_ptr<LdapDirectory> configuredLdap() const;
    std::shared_ptr<LdapDirectory> serverLdap(const std::filesystem::path& config) const;
};

ProblemSink Phone::State::problemSink() const {
    return [weak = std::weak_ptr(core)](const std::string& problem) {
        if (const auto alive = weak.lock()) {
            alive->addProblem(problem);
        }
    };
}

void Phone::State::openContactFiles() {
    const auto open = [this](Source source, std::string_view path) {
        core->setSource(source, std::make_shared<FileDirectory>(core->realPath(path), problemSink()));
    };
    open(Source::localDirectory, "/config/contacts/local_directory.csv");
    open(Source::remoteDirectory, "/config/contacts/remote_directory.csv");
    open(Source::broadSoftDirectory, "/config/contacts/broadsoft_directory.csv");
    const auto callLog = std::make_shared<CallLogFile>(core->realPath("/config/contacts/call_log.csv"), problemSink());
    core->setSource(Source::callLog, callLog);
    core->setRecentCalls(callLog);
    presence = std::make_unique<PresenceFile>(core->realPath("/config/contacts/presence_buddies.json"), problemSink());
    core->setPresence(presence.get());
    core->ldap.setDirectory(configuredLdap());
}

// The directory that the section [ldap] of the configuration describes; none when it cannot be used.
std::shared_ptr<LdapDirectory> Phone::State::configuredLdap() const {
    ConfigFile& config = core->configFile();
    const std::string mode = config.value("ldap", "mode").value_or("embedded");
    if (mode == "server") {
        return serverLdap(config.path());
    }
    if (mode != "embedded") {
        core->addProblem(config.path().string() + ": [ldap] mode = " + mode +
                         " is not known; write embedded or server");
        return nullptr;
    }
    const std::chrono::milliseconds delay(config.integer("ldap", "delay_ms").value_or(usualLdapDelay.count()));
    return std::make_shared<EmbeddedLdap>(
        core->kernel,
        std::make_unique<FileDirectory>(core->realPath("/config/contacts/ldap_directory.csv"), problemSink()),
        core->options.ldapDelay.value_or(delay));
}

std::shared_ptr<LdapDirectory> Phone::State::serverLdap(const std::filesystem::path& config) const {
    std::vector<std::string> mistakes;
    const auto options = readServerLdapOptions(config, mistakes);
    for (const std::string& mistake : mistakes) {
        core->addProblem(mistake);
    }
    if (!options) {
        return nullptr;
    }
    try {
        return makeServerLdap(*options, [weak = std::weak_ptr(core)](const std::string& line) {
            if (const auto alive = weak.lock()) {
                alive->report(6, "LDAP: " + line);
            }
        });
    } catch (const std::invalid_argument& reason) {
        core->addProblem(config.string() + ": [ldap] " + reason.what());
        return nullptr;
    }
}

Phone::Phone(PhoneOptions options) : m_state(std::make_unique<State>()) {
    m_state->core = std::make_shared<PhoneCore>(std::move(options));
    setCurrentPhone(m_state->core);
    if (m_state->core->options.contactFiles) {
        m_state->openContactFiles();
    }
}

Phone::~Phone() {
    PhoneCore& core = *m_state->core;
    m_state->watch.reset();
    core.kernel.stop();
    core.ldap.setDirectory(nullptr);
    core.setPresence(nullptr);
    setCurrentPhone(nullptr);
}

Kernel& Phone::kernel() {
    return m_state->core->kernel;
}

const PhoneOptions& Phone::options() const {
    return m_state->core->options;
}

void Phone::setSource(Source source, std::shared_ptr<ContactSource> contacts) {
    m_state->core->setSource(source, std::move(contacts));
}

void Phone::setRecentCalls(std::shared_ptr<RecentCalls> calls) {
    m_state->core->setRecentCalls(std::move(calls));
}

void Phone::setLdap(std::shared_ptr<LdapDirectory> directory) {
    m_state->core->ldap.setDirectory(std::move(directory));
}

void Phone::setPresence(CPresenceContactManager* manager) {
    m_state->core->setPresence(manager);
}

void Phone::setConfig(std::string_view key, int value) {
    m_state->core->setConfig(key, value);
}

void Phone::announceConfigChange(long long what) {
    m_state->core->deliver(configChanged, what);
}

void Phone::watchSourceList() {
    PhoneCore& core = *m_state->core;
    if (core.kernel.driver() == Driver::live && !m_state->watch) {
        m_state->watch = std::make_unique<FileWatch>(core.realPath("/config/data/wideseek.xml"), watchPeriod,
                                                     [&core] { core.deliver(configChanged, sourceListChanged); });
    }
}

bool Phone::isIdle() const {
    const PhoneCore& core = *m_state->core;
    const auto queries = core.ldap.queryCount();
    return !core.ldap.isBusy() && core.kernel.pending() == 0 && core.ldap.queryCount() == queries;
}

std::vector<std::string> Phone::problems() const {
    return m_state->core->problems.all();
}

void Phone::setTrace(TraceSink* sink) {
    m_state->core->setTrace(sink);
}

bool Phone::answerLdapAgain(const std::string& key, LdapAnswer answer) {
    return m_state->core->ldap.answerAgain(m_state->core, key, std::move(answer));
}

void Phone::failAllocation(std::size_t nth) {
    failTrackedAllocation(nth);
}

std::vector<Phone::Outstanding> Phone::outstanding() {
    std::vector<Outstanding> result;
    for (auto& [file, line, blocks] : trackedBlocks()) {
        result.push_back({std::move(file), line, blocks});
    }
    return result;
}

void Phone::setInterruption(std::function<void(std::string_view function)> interruption) {
    m_state->core->setInterruption(std::move(interruption));
}

std::size_t Phone::heldLocks() {
    return host::heldLocks();
}

} // namespace host
