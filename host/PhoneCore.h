// What the functions of platform/ act on: the parts of the one phone of this process.
//
// A Phone (Phone.h) makes it known on construction and forgets it on destruction, after everything that was queued has
// been let go of. Whoever works with it holds it shared, so that a function that is running when the phone goes down on
// another thread still finds a stopped phone and not a gone one. All operations may be called from any thread, unless
// they say otherwise.
#pragma once

#include "host/LdapModule.h"
#include "host/Phone.h"
#include "host/ProblemList.h"

#include <array>
#include <atomic>
#include <map>
#include <mutex>

namespace ETL_MsgQueueHelper {
struct msgObject;
}

namespace host {

class ConfigFile;

// What is called for a range of the phone's own messages.
struct MessageRegistration {
    unsigned int firstId = 0;
    unsigned int lastId = 0;
    int (*handler)(ETL_MsgQueueHelper::msgObject& message) = nullptr;

    bool operator==(const MessageRegistration&) const = default;
};

class PhoneCore {
public:
    explicit PhoneCore(PhoneOptions chosen);
    ~PhoneCore();

    PhoneCore(const PhoneCore&) = delete;
    PhoneCore& operator=(const PhoneCore&) = delete;

    const PhoneOptions options;
    ProblemList problems;
    Kernel kernel;
    LdapModule ldap;

    std::filesystem::path realPath(std::string_view path) const;

    // Adds to problems, and to the log when it is new.
    void addProblem(const std::string& problem);

    // One line for the log sink, without its line feed.
    void log(int module, int level, std::string_view line);

    // The log's own module number, for what the host has to say; level as in RFC 5424.
    void report(int level, std::string_view line) { log(0, level, line); }

    // Completes event with the time and hands it to the trace sink, if there is one.
    void trace(TraceEvent event);
    bool isTraced() const { return m_trace != nullptr; }

    // Lets another thread come in, so to speak, as Phone::setInterruption says.
    void interrupt(std::string_view function);

    std::shared_ptr<ContactSource> source(Source which) const;
    std::shared_ptr<RecentCalls> recentCalls() const;
    CPresenceContactManager* presence() const { return m_presence; }

    // The value of a key of the configuration; -1 when there is none.
    int configInt(std::string_view key);

    void registerHandler(const MessageRegistration& registration);
    void deliver(unsigned int messageId, long long parameter);

    void setSource(Source which, std::shared_ptr<ContactSource> contacts);
    void setRecentCalls(std::shared_ptr<RecentCalls> calls);
    void setPresence(CPresenceContactManager* manager) { m_presence = manager; }
    void setConfig(std::string_view key, int value);
    void setTrace(TraceSink* sink) { m_trace = sink; }
    void setInterruption(std::function<void(std::string_view)> interruption);

    // The configuration file; its values other than those of setConfig.
    ConfigFile& configFile() { return *m_configFile; }

private:
    void workMessage(unsigned int messageId, long long parameter);

    mutable std::mutex m_mutex; // guards what follows, up to the next remark
    std::array<std::shared_ptr<ContactSource>, 4> m_sources;
    std::shared_ptr<RecentCalls> m_recentCalls;
    std::map<std::string, int, std::less<>> m_config;
    std::vector<MessageRegistration> m_registrations;
    std::shared_ptr<const std::function<void(std::string_view)>> m_interruption;

    // Guard themselves.
    std::atomic<TraceSink*> m_trace{nullptr};
    std::unique_ptr<ConfigFile> m_configFile;
    std::atomic<CPresenceContactManager*> m_presence{nullptr};
};

// The phone that the functions of platform/ act on; null when there is none.
std::shared_ptr<PhoneCore> currentPhone();

// Makes core the phone that currentPhone gives; null ends that. Aborts when there is another one already.
void setCurrentPhone(std::shared_ptr<PhoneCore> core);

} // namespace host
