#include "tools/wideseek/SourceWatch.h"

#include <algorithm>

namespace wideseek {

void SourceWatch::onTrace(const host::TraceEvent& event) {
    const std::lock_guard lock(m_mutex);
    switch (event.kind) {
    case host::TraceKind::requestStarted:
        m_newRequest = true;
        break;
    case host::TraceKind::sourceAsked:
        if (m_newRequest) {
            m_newRequest = false;
            m_sources.clear();
        }
        m_sources.emplace_back();
        m_sources.back().name = event.source;
        m_sources.back().key = event.key;
        m_sources.back().asked = event.at;
        m_ldapAsked = m_ldapAsked || event.source == "LDAP";
        break;
    case host::TraceKind::sourceAnswered:
    case host::TraceKind::sourceAbandoned:
        close(event);
        m_ldapAsked = m_ldapAsked && event.source != "LDAP";
        break;
    default:
        break;
    }
}

bool SourceWatch::isLdapAsked() const {
    const std::lock_guard lock(m_mutex);
    return m_ldapAsked;
}

std::vector<SourceTrace> SourceWatch::lastSearch() const {
    const std::lock_guard lock(m_mutex);
    return m_sources;
}

// With the mutex held.
void SourceWatch::close(const host::TraceEvent& event) {
    const auto source = std::find_if(m_sources.begin(), m_sources.end(), [&](const SourceTrace& asked) {
        return asked.name == event.source && !asked.answered && !asked.abandoned;
    });
    if (source == m_sources.end()) {
        return;
    }
    if (event.kind == host::TraceKind::sourceAbandoned) {
        source->abandoned = true;
        return;
    }
    source->answered = event.at;
    source->contacts = event.contacts;
    source->numbers = event.numbers;
    source->failed = event.failed;
    source->problem = event.problem;
}

} // namespace wideseek
