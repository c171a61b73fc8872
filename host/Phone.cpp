#include "host/Phone.h"

#include "host/ConfiguredSources.h"
#include "host/PhoneCore.h"
#include "host/contacts/CallLogFile.h"
#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
#include "host/files/FileWatch.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/remote/RemoteDirectory.h"
#include "host/remote/RemoteWorker.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/SourceNames.h"
#include "host/text/NumberForm.h"

#include <set>
#include <utility>

namespace host {

using ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK;
using ETL_MsgQueueHelper::MSG_CONFIG_CHANGED;

namespace {

constexpr std::chrono::milliseconds watchPeriod(500);

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
        m_places[name] = m_core->realPath(path);
        const auto directory = std::make_shared<FileDirectory>(m_places[name], sink);
        setSource(source, directory);
        m_lookups[name] = directory;
    };
    open(Source::localDirectory, sourceName::localDirectory, "/config/contacts/local_directory.csv");
    open(Source::broadSoftDirectory, sourceName::broadSoftDirectory, "/config/contacts/broadsoft_directory.csv");
    m_places[sourceName::callLog] = m_core->realPath("/config/contacts/call_log.csv");
    m_places[sourceName::presence] = m_core->realPath("/config/contacts/presence_buddies.json");
    m_places[sourceName::ldap] = m_core->realPath("/config/contacts/ldap_directory.csv");
    m_callLog = std::make_shared<CallLogFile>(m_places[sourceName::callLog], sink);
    setSource(Source::callLog, m_callLog);
    setRecentCalls(m_callLog);
    m_lookups[sourceName::callLog] = m_callLog;
    m_presence = std::make_shared<PresenceFile>(m_places[sourceName::presence], sink);
    setPresence(m_presence.get());
    m_lookups[sourceName::presence] = m_presence;
    const std::set<std::string> doubtful = reportUnknownSettings(*m_core);
    if (doubtful.contains("remote_directory")) {
        reportDoubt(*m_core, "the remote directory");
    } else if (ConfiguredRemote remote = configuredRemote(m_core); remote.isWanted) {
        openRemoteDirectory(std::move(remote.directory));
    } else {
        open(Source::remoteDirectory, sourceName::remoteDirectory, "/config/contacts/remote_directory.csv");
    }
    if (doubtful.contains("ldap")) {
        reportDoubt(*m_core, "LDAP");
    } else {
        ConfiguredLdap ldap = configuredLdap(m_core);
        setLdap(std::move(ldap.directory));
        m_ldapFile = std::move(ldap.file);
        m_ldapServer = std::move(ldap.server);
        m_lookups[sourceName::ldap] = m_ldapServer ? std::shared_ptr<const ContactLookup>(m_ldapServer) : m_ldapFile;
    }
}

void Phone::openRemoteDirectory(std::shared_ptr<RemoteDirectory> directory) {
    m_remote = std::move(directory);
    setSource(Source::remoteDirectory, m_remote);
    m_lookups[sourceName::remoteDirectory] = m_remote;
    if (m_remote && m_core->options.network && kernel().driver() == Driver::live) {
        m_remoteWorker = std::make_unique<RemoteWorker>(m_remote);
    }
}

Phone::~Phone() {
    m_remoteWorker.reset();
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

std::optional<RemoteState> Phone::remoteDirectory() const {
    return m_remoteWorker ? std::optional(m_remote->state()) : std::nullopt;
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
