#include "tools/wideseek/phone/SourceWatch.h"

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
        openTrace(m_sources, event);
        m_ldapAsked = m_ldapAsked || event.source == "LDAP";
        break;
    case host::TraceKind::sourceAnswered:
    case host::TraceKind::sourceAbandoned:
        closeTrace(m_sources, event);
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

} // namespace wideseek
