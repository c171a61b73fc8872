#include "tools/wideseek/phone/SourceWatch.h"

#include "host/sources/SourceNames.h"

namespace wideseek {

void SourceWatch::onTrace(const host::TraceEvent& event) {
    const std::lock_guard lock(m_mutex);
    switch (event.kind) {
    case host::TraceKind::requestStarted:
        m_asked.clear();
        break;
    case host::TraceKind::sourceAsked:
        m_key = event.key;
        entryFor(event.source) = openedTrace(event);
        m_ldapAsked = m_ldapAsked || event.source == host::sourceName::ldap;
        break;
    case host::TraceKind::sourceAnswered:
        if (event.failed) {
            m_failures.insert_or_assign(std::string(event.source), std::string(event.problem));
        } else {
            m_failures.erase(std::string(event.source));
        }
        [[fallthrough]];
    case host::TraceKind::sourceAbandoned:
        closeTrace(m_sources, event);
        m_ldapAsked = m_ldapAsked && event.source != host::sourceName::ldap;
        break;
    default:
        break;
    }
}

// Where the source that is asked now stood when it was asked before. LDAP is one, whenever its turn comes.
SourceTrace& SourceWatch::entryFor(std::string_view name) {
    std::size_t nth = name == host::sourceName::ldap ? 0 : m_asked[std::string(name)]++;
    for (SourceTrace& source : m_sources) {
        if (source.name == name && nth-- == 0) {
            return source;
        }
    }
    return m_sources.emplace_back();
}

bool SourceWatch::isLdapAsked() const {
    const std::lock_guard lock(m_mutex);
    return m_ldapAsked;
}

std::vector<SourceTrace> SourceWatch::latest() const {
    const std::lock_guard lock(m_mutex);
    return m_sources;
}

std::optional<std::string> SourceWatch::key() const {
    const std::lock_guard lock(m_mutex);
    return m_key;
}

std::map<std::string, std::string, std::less<>> SourceWatch::failures() const {
    const std::lock_guard lock(m_mutex);
    return m_failures;
}

const SourceTrace* traceOf(const std::vector<SourceTrace>& latest, std::string_view name, std::size_t nth) {
    for (const SourceTrace& source : latest) {
        if (source.name == name && nth-- == 0) {
            return &source;
        }
    }
    return nullptr;
}

} // namespace wideseek
