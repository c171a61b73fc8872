// The workstation phone: what a tool or a test may ask of it beyond what a phone offers (platform/).
//
// A Phone is made first and destroyed last; in between, the functions of platform/ act on it. There is one at a time in
// a process. Without one, the functions of platform/ answer like a phone that has nothing: no threads, no contacts.
//
//     host::Phone phone({.root = "sample", .driver = host::Driver::live});
//     Wideseek_PreInit();
//     Wideseek_SearchUnion("5", 0, 10, &screen);
//     phone.kernel().serveMain([&] { return screen.hasPage(); }, std::chrono::seconds(1));
//     NS_WS::CWideseekController::ReleaseInstance();
#pragma once

#include "host/PhoneOptions.h"
#include "host/SourceTrial.h"
#include "host/kernel/Interruption.h"
#include "host/kernel/Trace.h"
#include "host/kernel/TrackedBlocks.h"
#include "host/remote/RemoteState.h"
#include "host/sources/ContactSource.h"
#include "host/sources/LdapDirectory.h"
#include "host/sources/RecentCalls.h"

#include "platform/Presence.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class CallLogFile;
class ContactLookup;
class FileDirectory;
class FileWatch;
class PhoneCore;
class PresenceFile;
class RemoteDirectory;
class RemoteWorker;
class ServerLdapDirectory;

class Phone {
public:
    // Throws std::system_error when a thread cannot be started, std::bad_alloc without memory.
    explicit Phone(PhoneOptions options);

    // Stops all threads, then lets go of whatever is still queued. The search module is released before this.
    ~Phone();

    Phone(const Phone&) = delete;
    Phone& operator=(const Phone&) = delete;

    Kernel& kernel();
    const PhoneOptions& options() const;

    // Replaces what stands behind the phone's functions; null: that function fails. Not while a search runs.
    void setSource(Source source, std::shared_ptr<ContactSource> contacts);
    void setRecentCalls(std::shared_ptr<RecentCalls> calls);
    void setLdap(std::shared_ptr<LdapDirectory> directory);
    void setPresence(CPresenceContactManager* manager);

    // Adds a call to the phone's own call log, as if it had just been made: it is the newest one until the next. The
    // call log's file stays as it is. Without contact files there is no call log to add to, and nothing happens. Any
    // thread.
    void addOutgoingCall(const GeneralDirItemData& call);

    // Finds contacts again in the file behind a source, by the name of the source (sources/SourceNames.h); of an LDAP
    // server, the people of its latest answers. Null when there is no such source: without contact files, for a name
    // that is not known. It lives as long as the phone. Any thread.
    const ContactLookup* lookup(std::string_view sourceName) const;

    // True when LDAP is a server, of which no more than the latest answers is kept here. Any thread.
    bool asksLdapServer() const { return m_ldapServer != nullptr; }

    // Asks a source (sources/SourceNames.h) for nobody's sake, which reads its file anew where that has changed, or has
    // a server asked. Waits for it until giveUp() is true, which is looked at all the time. Not while a search runs.
    SourceTrial tryOut(std::string_view sourceName, const std::function<bool()>& giveUp);

    // A value of the phone's configuration in place of the configuration file's. Any thread.
    void setConfig(std::string_view key, int value);

    // Delivers the message that a part of the configuration changed (MSG_CONFIG_CHANGED with this parameter, such as
    // CFG_CHANGE_WIDESEEK) on the message thread. Any thread.
    void announceConfigChange(long long what);

    // From now on, announces a change of the source list within a second whenever "/config/data/wideseek.xml" is
    // changed, made or removed on disk. The watch runs beside the kernel: it counts as nothing pending, and what it
    // announces does. The stepped driver, in which nothing happens by itself, does not watch.
    void watchSourceList();

    // True when nothing is queued, running or awaited from the LDAP directory: no page can come without a new request.
    // A repeating timer that is set counts as queued. Any thread.
    bool isIdle() const;

    // How the remote directory does, when it is a server that is asked beside the searches: isIdle knows nothing of it.
    // Nothing for one that is a file. Any thread.
    std::optional<RemoteState> remoteDirectory() const;

    // What went wrong with the phone's files so far ("file:line: reason"), each problem once, from the one with this
    // index on. To ask for new ones alone, pass how many you have seen. Any thread.
    std::vector<std::string> problems(std::size_t from = 0) const;

    // Told of everything that crosses the platform boundary; null ends it. Not while a search runs.
    void setTrace(TraceSink* sink);

    // ---- faults and accounts, for tests ----

    // What an LDAP module gone wrong would do: delivers answer as the answer to key to whoever asked LDAP last,
    // whatever that was and however often it has been answered. False when nobody is there to take it. Any thread.
    bool answerLdapAgain(const std::string& key, LdapAnswer answer);

    // The nth tracked allocation from now on (1: the next) gives null, once; 0 ends that.
    static void failAllocation(std::size_t nth);

    // Tracked blocks that have not been given back, by who asked for them. Any thread.
    static std::vector<TrackedBlocks> outstanding();

    // Called at every call of a platform function that another thread could come in at (Interruption.h); none ends it.
    // Not while a search runs.
    void setInterruption(Interruption interruption);

private:
    void openContactFiles();
    void openRemoteDirectory(std::shared_ptr<RemoteDirectory> directory);
    void goDown();

    const std::shared_ptr<PhoneCore> m_core;
    std::shared_ptr<CallLogFile> m_callLog;            // null without contact files
    std::shared_ptr<PresenceFile> m_presence;          // null without contact files
    std::shared_ptr<FileDirectory> m_ldapFile;         // null where it is a server, or nothing
    std::shared_ptr<ServerLdapDirectory> m_ldapServer; // null where it is none
    std::unique_ptr<FileWatch> m_watch;                // null while nothing is watched
    std::shared_ptr<RemoteDirectory> m_remote;         // null where it is no server
    std::unique_ptr<RemoteWorker> m_remoteWorker;      // null where no server is asked

    std::map<std::string_view, std::shared_ptr<const ContactLookup>> m_lookups; // by source; as the phone was made
    std::map<std::string_view, std::filesystem::path> m_places;                 // of their files, by source
};

} // namespace host
