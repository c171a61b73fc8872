#include "tools/wideseek/TraceLog.h"

#include <algorithm>

namespace wideseek {

void TraceLog::onTrace(const host::TraceEvent& event) {
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
        request->sources.emplace_back();
        request->sources.back().name = event.source;
        request->sources.back().key = event.key;
        request->sources.back().asked = event.at;
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

bool TraceLog::isIdle() const {
    const std::lock_guard lock(m_mutex);
    return std::all_of(m_requests.begin(), m_requests.end(), [](const RequestTrace& request) {
        return request.finished && std::all_of(request.sources.begin(), request.sources.end(),
                                               [](const auto& source) { return source.answered || source.abandoned; });
    });
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
        for (SourceTrace& source : request->sources) {
            if (source.name != event.source || source.answered || source.abandoned) {
                continue;
            }
            if (event.kind == host::TraceKind::sourceAbandoned) {
                source.abandoned = true;
            } else {
                source.answered = event.at;
                source.contacts = event.contacts;
                source.numbers = event.numbers;
                source.failed = event.failed;
                source.problem = event.problem;
            }
            return;
        }
    }
}

} // namespace wideseek
