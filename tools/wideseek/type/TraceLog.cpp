#include "tools/wideseek/type/TraceLog.h"

#include <algorithm>

namespace wideseek {

void TraceLog::onTrace(const host::TraceEvent& event) {
    m_answers.onTrace(event);
    const std::lock_guard lock(m_mutex);
    if (event.kind == host::TraceKind::requestQueued) {
        m_requests.push_back({.queued = event.at, .finished = false, .sources = {}, .pages = {}});
        return;
    }
    if (event.kind == host::TraceKind::requestStarted) {
        ++m_started;
    }
    RequestTrace* request = current();
    if (!request) {
        return;
    }
    switch (event.kind) {
    case host::TraceKind::requestFinished:
        request->finished = true;
        break;
    case host::TraceKind::sourceAsked:
        openTrace(request->sources, event);
        break;
    case host::TraceKind::sourceAnswered:
    case host::TraceKind::sourceAbandoned:
        closeSource(event);
        break;
    case host::TraceKind::pageSent:
        // Once a request has been handed over, no page is sent for an older one.
        request->pages.push_back(event.at);
        m_pages.push_back(m_started - 1);
        break;
    default:
        break;
    }
}

std::vector<RequestTrace> TraceLog::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

// It is asked many times for each request, so it looks only at those that were open when it looked last.
bool TraceLog::isIdle() const {
    const std::lock_guard lock(m_mutex);
    const auto isClosed = [](const RequestTrace& request) {
        return request.finished && std::all_of(request.sources.begin(), request.sources.end(),
                                               [](const auto& source) { return source.answered || source.abandoned; });
    };
    while (m_closed < m_requests.size() && isClosed(m_requests[m_closed])) {
        ++m_closed;
    }
    return m_closed == m_requests.size();
}

std::optional<std::size_t> TraceLog::requestOfPage(std::size_t page) const {
    const std::lock_guard lock(m_mutex);
    return page < m_pages.size() ? std::optional(m_pages[page]) : std::nullopt;
}

// With the mutex held: the request that is being worked, or was last.
RequestTrace* TraceLog::current() {
    return m_started > 0 && m_started <= m_requests.size() ? &m_requests[m_started - 1] : nullptr;
}

// With the mutex held. An LDAP answer may belong to an earlier request than the one that is being worked.
void TraceLog::closeSource(const host::TraceEvent& event) {
    for (auto request = m_requests.rbegin(); request != m_requests.rend(); ++request) {
        if (closeTrace(request->sources, event)) {
            return;
        }
    }
}

} // namespace wideseek
