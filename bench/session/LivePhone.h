// The phone as it runs: real threads, contact files, and a callback object that stands where the search screen stands.
//
// Five sources answer at once: the local directory, the call log, the remote and the BroadSoft directory, each over a
// contact file, and the presence buddies. The thread that makes it is the phone's main thread and calls everything.
#pragma once

#include "bench/session/KeySearch.h"
#include "bench/session/Population.h"
#include "host/Phone.h"
#include "host/files/TemporaryFolder.h"
#include "host/sources/ContactSource.h"
#include "platform/TaskAction.h"

#include <functional>
#include <memory>

namespace bench {

class LivePhone : public KeySearch {
public:
    // Throws std::runtime_error when a contact file is not as it should be; type does when no page comes.
    explicit LivePhone(const Population& population);
    ~LivePhone() override;
    LivePhone(const LivePhone&) = delete;
    LivePhone& operator=(const LivePhone&) = delete;

    bool isStateless() const override { return false; }

    // Clears the search box as a screen does, with an empty request, which frees the rows; notes what another one
    // takes.
    void begin() override;

    // From the call of Wideseek_SearchUnion to the page at the callback object, and to the end of the work on the
    // search thread; waits for both. A page that the sources in front fill is sent before the others are asked.
    Took type(const std::string& key) override;
    Page page() const override;

    // Types keys faster than they can be answered, the next one a gap after the one before, and waits for the page of
    // the last one and for the end of all work. From the last one's Wideseek_SearchUnion to its page.
    Nanoseconds typeBurst(const std::vector<std::string>& keys, Nanoseconds gap);

    // The times of those two empty requests so far. No source has any contact meanwhile: what the second one takes is
    // what the two hand-overs, caller to search thread to callback object, take by themselves.
    const std::vector<Nanoseconds>& clearings() const { return m_clearings; }
    const std::vector<Nanoseconds>& emptyRequests() const { return m_emptyRequests; }

    // How long the caller's thread is held up by what it may do, while a search for key runs and while none does.
    struct CallerTimes {
        std::vector<Nanoseconds> handOver; // Wideseek_SearchUnion
        std::vector<Nanoseconds> reset;    // Wideseek_ResetKey
        std::vector<Nanoseconds> detach;   // Wideseek_ResetCallBack, of an object that waits for no page
    };
    CallerTimes callerDuringSearch(const std::string& key, std::size_t rounds);
    CallerTimes callerAtRest(const std::string& key, std::size_t rounds);

    // Told on the search thread when a source begins and when it ends to work. Not while a search runs.
    void watchSources(std::function<void(bool inSource)> watcher);

private:
    class Screen : public NS_TA::CTaskActionCallbackBase {
    public:
        void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;

        std::size_t pages = 0;
        Clock::time_point at;
        WideseekListData page;
    };

    class Trace : public host::TraceSink {
    public:
        void onTrace(const host::TraceEvent& event) override;

        std::function<void(bool)> watcher;
        std::atomic<bool> isWorking{false}; // a request is
    };

    void request(const std::string& key);
    void timeCalls(const std::string& key, CallerTimes& times);
    void await(const std::string& key, const std::function<bool()>& finished);
    void setContacts(const std::shared_ptr<host::ContactSource>& local,
                     const std::shared_ptr<host::ContactSource>& calls);

    host::TemporaryFolder m_root;
    host::Phone m_phone;
    std::shared_ptr<host::ContactSource> m_local;
    std::shared_ptr<host::ContactSource> m_calls;
    std::vector<Nanoseconds> m_clearings;
    std::vector<Nanoseconds> m_emptyRequests;
    Screen m_screen;
    Trace m_trace;
};

} // namespace bench
