// A phone with its search screen, typed into from the command line.
//
// It uses the library as a screen does, through the exported functions: made at start-up, asked at every key, detached
// and released at the end. All of it belongs to one thread, which is the phone's main thread while it waits in here.
//
//     Session session(options, [](const Page& page) { printPage(std::cout, page); });
//     session.type("5", 0, 10);
//     session.settle();
#pragma once

#include "host/Phone.h"
#include "tools/wideseek/Library.h"
#include "tools/wideseek/Page.h"
#include "tools/wideseek/Screen.h"
#include "tools/wideseek/sources/ProblemReport.h"
#include "tools/wideseek/type/TraceLog.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace wideseek {

enum class Outcome {
    page,        // its first page came
    noPage,      // the search has ended without a page: what was asked for is refused
    silence,     // nothing came in time
    interrupted, // the user wants to end
};

class Session {
public:
    using PageHandler = std::function<void(const Page& page)>;

    // Starts the phone and the library; onPage is called while one of the operations below waits. Problems of the
    // phone's files and of its sources are written to the standard error output as they turn up, each once. Throws
    // std::runtime_error when the library cannot be started.
    Session(host::PhoneOptions options, PageHandler onPage);
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Waits for the contacts of a remote directory that has none yet, until its first refresh is over; says so when
    // that takes long. The user may interrupt it.
    void awaitContacts();

    // Hands key over and waits for its first page. Throws std::runtime_error when the library does not take it.
    Outcome type(const std::string& key, int from, int count);

    // Goes on taking pages for this long, or until the user interrupts.
    void pause(std::chrono::milliseconds time);

    // Waits until every source has answered and every page is here. False: given up after a while, or interrupted.
    bool settle();

    // The total that the last page of each request reported; -1 without a page.
    const std::vector<int>& totals() const { return m_totals; }

    const TraceLog& trace() const { return m_trace; }

private:
    struct Request {
        std::chrono::steady_clock::time_point handedOver;
        std::size_t pages = 0;
    };

    void takePage(const WideseekListData& data);
    bool isSettled();
    void reportProblems();

    TraceLog m_trace; // outlives the phone, which reports to it
    PageHandler m_onPage;
    ProblemReport m_problems;
    host::Phone m_phone;
    Library m_library;
    Screen m_screen;
    std::vector<Request> m_requests;
    std::vector<int> m_totals;
    std::size_t m_pages = 0;
};

} // namespace wideseek
