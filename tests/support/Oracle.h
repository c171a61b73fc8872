// The search as a person would work it out on paper: which pages must come, and who must be asked, for what happens on
// the phone. It shares nothing with the search and takes no care for speed: rows are listed bucket by bucket, a name
// and number that is there already is dropped, keys are matched letter by letter, pages are sliced out.
//
//     Oracle oracle;
//     oracle.sources[localId] = {"local directory", phone.local};
//     oracle.file = {localId};
//     oracle.handOver({"5", 0, 10, 1});  // what a caller does
//     oracle.work();                     // a request's message ran
//     oracle.sent.front();               // what must arrive first: {1, "5 0+10 of 1: Ann 51,"}
//
// It understands keys of ASCII letters, digits, blanks and dashes.
#pragma once

#include "tests/support/SteppedPhone.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

class Oracle {
public:
    static constexpr int nobody = -1;

    struct Request {
        std::string key; // as typed
        int from = 0;
        int count = 10;
        int screen = nobody;
    };

    // The phone.
    std::map<std::string, std::pair<std::string, std::shared_ptr<ScriptedSource>>> sources; // id, name in the trace
    std::vector<std::string> file; // the ids in the source list file
    std::vector<Contact> calls;    // outgoing
    bool recentCalls = false;
    host::Duration now{};
    std::function<void()> meanwhile = [] {}; // another thread comes in: before and after every question to a source

    // Whatever has been before.
    void startAnew();

    // What callers do.
    void start();
    void stop();
    void handOver(const Request& request);
    void reset();
    void reload();
    void detach(int screen);

    // What messages do.
    void work();
    void expire();
    void answer(const std::string& key, const std::vector<Contact>& rows, bool succeeded);

    // What must have come of it.
    std::deque<std::pair<int, std::string>> sent; // screen and page, as textOf gives it
    std::vector<std::string> asked;               // "local directory 5"
    static std::string textOf(const WideseekListData& page);

    int life() const { return m_life; } // how often it was stopped
    bool isAlive(int life) const;       // running, or kept by requests that are still queued
    bool hasPast() const { return !m_queued.empty() && m_queued.front() != m_life; }
    std::optional<host::Duration> timer() const { return m.timer; }
    std::size_t requestsQueued() const { return m_queued.size(); }

private:
    enum class State { waiting, searching, done, failed };

    struct Bucket {
        std::string id;
        State state = State::waiting;
        std::vector<Contact> rows; // the first number is the row's
    };

    // What one life knows.
    struct Search {
        bool running = false;
        std::vector<std::string> list;
        std::optional<Request> next; // handed over, not taken
        Request work;                // being worked
        std::string key;             // its key, converted
        int receiver = nobody;       // whom it owes a page
        int late = nobody;           // who gets a late answer's page
        std::string heldKey;         // whose rows the buckets hold; empty: no key's
        bool fresh = false;          // not reset since they were asked for
        std::vector<Bucket> buckets;
        bool armed = false;
        std::optional<host::Duration> timer;
    };

    struct Stopped {};

    void ask(const std::string& name, const std::string& key);
    void askAll(const std::string& key);
    void askLdap(const std::string& key);
    void narrow(const std::string& key);
    void offerRecentCalls();
    void check(const std::string& key, const std::string& shownKey);
    void cut(const std::string& key, const std::string& shownKey);
    void send(const std::string& shownKey, long long total, const std::string& rows);
    void add(Bucket& bucket, const Contact& contact);
    Bucket* find(const std::string& id);
    bool mayCut() const { return m.work.from >= 0 && m.work.count >= 0 && m.running && !m.next; }

    Search m;
    int m_life = 0;
    std::deque<int> m_queued; // the life each queued request belongs to
};

} // namespace test
