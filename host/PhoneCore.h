// What the functions of platform/ act on: the parts of the one phone of this process.
//
// A Phone (Phone.h) makes it known on construction and forgets it on destruction, after everything that was queued has
// been let go of. Whoever works with it shares in owning it: a function that is running while another thread takes the
// phone down finds a phone that has stopped, not one that has been freed. All operations may be called from any thread.
#pragma once

#include "host/PhoneOptions.h"
#include "host/kernel/Interruption.h"
#include "host/kernel/Kernel.h"
#include "host/kernel/ProblemList.h"
#include "host/kernel/Reporter.h"
#include "host/kernel/Slot.h"
#include "host/ldap/LdapModule.h"
#include "host/settings/ConfigFile.h"
#include "host/sources/ContactSource.h"
#include "host/sources/RecentCalls.h"

#include "platform/Presence.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ETL_MsgQueueHelper {
struct msgObject;
}

namespace host {

using MessageHandler = int (*)(ETL_MsgQueueHelper::msgObject& message);

// What is called for a range of the phone's own messages.
struct MessageRegistration {
    unsigned int firstId = 0;
    unsigned int lastId = 0;
    MessageHandler handler = nullptr;

    bool operator==(const MessageRegistration&) const = default;
};

class PhoneCore final : public Reporter {
public:
    explicit PhoneCore(PhoneOptions chosen);
    PhoneCore(const PhoneCore&) = delete;
    PhoneCore& operator=(const PhoneCore&) = delete;

    const PhoneOptions options;
    ProblemList problems;
    Kernel kernel;
    LdapModule ldap;
    ConfigFile configFile;

    // What stands behind the phone's functions; null: that function fails.
    Slot<std::shared_ptr<ContactSource>>& source(Source which) { return m_sources.at(static_cast<std::size_t>(which)); }
    Slot<std::shared_ptr<RecentCalls>> recentCalls;
    std::atomic<CPresenceContactManager*> presence{nullptr};

    std::atomic<TraceSink*> traceSink{nullptr};             // null: nobody follows
    Slot<std::shared_ptr<const Interruption>> interruption; // none: nobody comes in

    std::filesystem::path realPath(std::string_view path) const;

    // Adds to problems, and to the log when it is new.
    void addProblem(const std::string& problem);

    // One line for the log sink, without its line feed.
    void log(int module, int level, std::string_view line);

    // Under the log's own module number.
    void report(int level, std::string_view line) override { log(0, level, line); }

    void trace(TraceEvent event) override;

    // Runs what a test has set to come in at this call (Interruption.h).
    void interrupt(PlatformFunction function, PlatformCall::Moment moment = PlatformCall::Moment::called);

    // The value of a key of the configuration: what was set here, else the file's; -1 when there is none.
    int configInt(std::string_view key);
    void setConfig(std::string_view key, int value);

    // Queues a message of the phone's own for the handlers that are registered for its id.
    void deliver(unsigned int messageId, long long parameter);
    void registerHandler(const MessageRegistration& registration);

private:
    void workMessage(unsigned int messageId, long long parameter);
    MessageHandler nextHandler(unsigned int messageId, std::size_t& at); // null: no further one

    std::array<Slot<std::shared_ptr<ContactSource>>, 4> m_sources;

    std::mutex m_mutex; // guards what follows
    std::map<std::string, int, std::less<>> m_config;
    std::vector<MessageRegistration> m_registrations;
};

// The phone that the functions of platform/ act on; null when there is none.
std::shared_ptr<PhoneCore> currentPhone();

// Makes core the phone that currentPhone gives; null ends that. Aborts when there is another one already.
void setCurrentPhone(std::shared_ptr<PhoneCore> core);

} // namespace host
