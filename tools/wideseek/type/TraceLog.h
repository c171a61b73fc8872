// What crossed the platform boundary, sorted by request: who was asked for what, who answered, which pages were sent.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile. Requests are
// numbered from 0 in the order in which they were handed over.
#pragma once

#include "host/kernel/Trace.h"
#include "tools/wideseek/sources/SourceAnswers.h"
#include "tools/wideseek/sources/SourceTrace.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

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

    // What the sources said, whatever the request.
    SourceAnswers& answers() { return m_answers; }
    const SourceAnswers& answers() const { return m_answers; }

    // Every request has been worked, and no source is still being asked.
    bool isIdle() const;

    // The request that a page answers. Pages are numbered from 0 as they are sent, which is how they arrive. None: no
    // page of this number has been sent.
    std::optional<std::size_t> requestOfPage(std::size_t page) const;

private:
    RequestTrace* current();
    void closeSource(const host::TraceEvent& event);

    SourceAnswers m_answers;

    mutable std::mutex m_mutex; // guards what follows
    std::vector<RequestTrace> m_requests;
    std::size_t m_started = 0;
    mutable std::size_t m_closed = 0; // so many of the first requests wait for nothing any more
    std::vector<std::size_t> m_pages; // the request of each page
};

} // namespace wideseek
