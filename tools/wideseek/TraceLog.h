// What crossed the platform boundary, sorted by request: who was asked for what, who answered, which pages were sent.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile. Requests are
// numbered from 0 in the order in which they were handed over.
#pragma once

#include "host/Trace.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

struct SourceTrace {
    std::string name;
    std::string key; // what it was asked for
    host::Duration asked{};
    std::optional<host::Duration> answered; // none: it was not waited for, or has not answered yet
    bool abandoned = false;
    std::size_t contacts = 0;
    std::size_t numbers = 0;
    bool failed = false;
    std::string problem;
};

struct RequestTrace {
    host::Duration queued{};
    bool finished = false;
    std::vector<SourceTrace> sources;  // in the order in which they were asked
    std::vector<host::Duration> pages; // when each was sent
};

class TraceLog : public host::TraceSink {
public:
    void onTrace(const host::TraceEvent& event) override;

    std::vector<RequestTrace> requests() const;

    // Every request has been worked and every source has answered or was given up.
    bool isIdle() const;

    // The request that the page-th page (from 0, in the order of sending, which is that of arrival) was sent for; none
    // for a page that was not sent.
    std::optional<std::size_t> requestOfPage(std::size_t page) const;

private:
    RequestTrace* current();
    void closeSource(const host::TraceEvent& event);

    mutable std::mutex m_mutex; // guards what follows
    std::vector<RequestTrace> m_requests;
    std::size_t m_started = 0;
    std::vector<std::size_t> m_pages; // the request of each page
};

} // namespace wideseek
