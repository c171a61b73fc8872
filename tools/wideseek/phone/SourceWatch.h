// Follows which sources the search asks, for a screen: whether LDAP is still being asked, and what each source answered
// to the last search.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile.
#pragma once

#include "host/kernel/Trace.h"
#include "tools/wideseek/SourceTrace.h"

#include <mutex>
#include <string>
#include <vector>

namespace wideseek {

class SourceWatch : public host::TraceSink {
public:
    void onTrace(const host::TraceEvent& event) override;

    bool isLdapAsked() const;

    // The sources of the last search that asked any, in the order in which they were asked.
    std::vector<SourceTrace> lastSearch() const;

private:
    mutable std::mutex m_mutex; // guards what follows
    bool m_ldapAsked = false;
    bool m_newRequest = false; // and it has asked no source so far
    std::vector<SourceTrace> m_sources;
};

} // namespace wideseek
