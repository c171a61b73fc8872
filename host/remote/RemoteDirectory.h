// A source of contacts that a server on the web has: a vCard or CSV file, or a CardDAV address book (RFC 6352).
//
// It answers from its copy, at once and whatever the server does. Somebody beside the search (RemoteWorker.h) has it
// refresh the copy now and then; a copy is kept in a file as well, for the next start. While the last refresh has
// failed, an answer says so: how old the copy is, why, and what to do. What a server sends that holds no contacts is
// not taken in place of a copy that does.
//
//     RemoteDirectory directory(options, copyFile, makeCurlTransport(settings), {.log = log});
//     directory.search("5", hits, note);                  // any thread
//     while (...) { sleepUntil(directory.work(now)); }    // one other thread
#pragma once

#include "host/remote/RemoteContacts.h"
#include "host/remote/RemoteState.h"
#include "host/remote/http/HttpTransport.h"
#include "host/remote/refresh/RefreshPlan.h"
#include "host/remote/refresh/RemoteConversation.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/ContactSource.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace host {

class RemoteDirectory final : public ContactSource, public ContactLookup {
public:
    using TimePoint = RefreshPlan::TimePoint;

    // Each may be left out. They are called on the worker's thread, problem also on the one that searches first, with
    // no lock of the directory held, and must not ask it for anything.
    struct Surroundings {
        std::function<void(std::string)> problem{}; // told of each problem of a contact: "place:line: reason"
        std::function<void(std::string)> log{};     // told of each refresh in a line
        std::function<void()> firstContacts{};      // there are contacts now, and were none
        std::function<RemoteState::Time()> clock{}; // what time it is
        RefreshPlan::Spread spread{};
    };

    // Reads and writes copyFile, not before it is first asked or first works.
    RemoteDirectory(RemoteOptions options, std::filesystem::path copyFile, std::unique_ptr<HttpTransport> transport,
                    Surroundings surroundings);

    // False without a copy to answer from. error then says why; with an answer, what is to be known of it. Any thread.
    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override;
    std::optional<KnownContact> find(const NameAndNumber& row) const override;
    std::size_t size() const override { return state().contacts; }

    // Any thread.
    RemoteState state() const;

    // Does what is due, with one exchange at most, and gives when to come again. Throws nothing. One thread.
    TimePoint work(TimePoint now);

    // Ends the exchange that runs, and all later work, at once. Any thread.
    void stop();

private:
    void loadOnce();
    RemoteContacts read(const RemoteCopy& copy) const;
    TimePoint goOn(TimePoint now);
    void finish(TimePoint now);
    bool take(RemoteCopy copy, bool changed, std::string& problem);
    void publish(std::shared_ptr<const ContactTable> table, RemoteState::Time confirmed);
    void tell(const std::vector<std::string>& problems) const;
    void ended(const std::string& problem);
    std::string noteOn(const RemoteState& state) const;
    std::shared_ptr<const ContactTable> table() const;

    const RemoteOptions m_options;
    const std::string m_source; // whose copy it is
    const std::filesystem::path m_copyFile;
    const std::unique_ptr<HttpTransport> m_transport;
    const Surroundings m_surroundings;
    std::atomic<bool> m_stopped = false;

    std::once_flag m_loaded;
    RemoteCopy m_copy;                             // the worker's, once it has been loaded
    std::unique_ptr<RemoteConversation> m_refresh; // the worker's; null between refreshes
    RefreshPlan m_plan;                            // the worker's

    mutable std::mutex m_mutex; // a leaf, held to copy or set what follows
    std::shared_ptr<const ContactTable> m_table;
    RemoteState m_state;
};

} // namespace host
