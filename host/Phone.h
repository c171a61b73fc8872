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

#include "host/ContactSource.h"
#include "host/Kernel.h"
#include "host/LdapDirectory.h"
#include "host/Trace.h"

#include "platform/Presence.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// The synchronous sources behind the directory functions.
enum class Source { localDirectory, callLog, remoteDirectory, broadSoftDirectory };

// What answers Directory_SearchCallLogRecentOutCall.
class RecentCalls {
public:
    virtual ~RecentCalls() = default;

    // As the platform's function of that name, with the reason of a failure for people.
    virtual int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) = 0;
};

// Where log lines go: module, level, and the line without its line feed. Called on the thread that logs, with no lock
// of the host held.
using LogSink = std::function<void(int module, int level, std::string_view line)>;

struct PhoneOptions {
    std::filesystem::path root; // stands in for "/"; empty: the machine's own root
    Driver driver = Driver::live;
    std::optional<Duration> ldapDelay; // of the embedded LDAP directory, in place of the phone's configuration
    bool contactFiles = true;          // false: no source is set, for tests that set their own
    LogSink log;                       // none: nothing is logged
};

class Phone {
public:
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

    // A value of the phone's configuration in place of the configuration file's. Any thread.
    void setConfig(std::string_view key, int value);

    // Delivers the message that a part of the configuration changed (0x10007 with this parameter; 52 is the source
    // list) on the message thread. Any thread.
    void announceConfigChange(long long what);

    // From now on, announces a change of the source list within a second whenever "/config/data/wideseek.xml" is
    // changed, made or removed on disk. The watch runs beside the kernel: it counts as nothing pending, and what it
    // announces does. The stepped driver, in which nothing happens by itself, does not watch.
    void watchSourceList();

    // True when nothing is queued, running or awaited from the LDAP directory: no page can come without a new request.
    // A repeating timer that is set counts as queued. Any thread.
    bool isIdle() const;

    // What went wrong with the phone's files so far ("file:line: reason"), each problem once. Any thread.
    std::vector<std::string> problems() const;

    // Told of everything that crosses the platform boundary; null ends it. Not while a search runs.
    void setTrace(TraceSink* sink);

    // ---- faults and accounts, for tests ----

    // What an LDAP module gone wrong would do: delivers answer as the answer to key to whoever asked LDAP last,
    // whatever that was and however often it has been answered. False when nobody is there to take it. Any thread.
    bool answerLdapAgain(const std::string& key, LdapAnswer answer);

    // The nth tracked allocation from now on (1: the next) gives null, once; 0 ends that.
    static void failAllocation(std::size_t nth);

    struct Outstanding {
        std::string file;
        int line = 0;
        std::size_t blocks = 0;
    };

    // Tracked blocks that have not been given back, by who asked for them. Any thread.
    static std::vector<Outstanding> outstanding();

    // Called at every call of a platform function that another thread could come in at, with the function's name, on
    // the calling thread and with no lock of the host held; null ends it. Not while a search runs. The functions that
    // answer (the directories, GetListByGroupId, Ldap_SearchAsync, TaskAction_ExecAction) call it again before they
    // return, with ":answered" behind the name. An interruption is not interrupted.
    //
    // What the interruption does stands for what another thread does at this moment; another thread would have to wait
    // for the locks that the caller holds, so look at heldLocks() first.
    void setInterruption(std::function<void(std::string_view function)> interruption);

    // How many chCriticalSections the calling thread holds, each as often as it was locked.
    static std::size_t heldLocks();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace host
