// Follows which sources the search asks, for a screen: whether LDAP is still being asked, and what each source answered
// last.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile.
#pragma once

#include "host/kernel/Trace.h"
#include "tools/wideseek/sources/SourceTrace.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

class SourceWatch : public host::TraceSink {
public:
    void onTrace(const host::TraceEvent& event) override;

    bool isLdapAsked() const;

    // What sources have been asked last, each of them as it was asked last: a key that grows asks LDAP alone. Sources
    // of one name stand in the order in which they were asked.
    std::vector<SourceTrace> latest() const;

    // The key that a source was asked for last; none when none has been asked.
    std::optional<std::string> key() const;

    // Why each source failed, by its name, until it answers better. A source that is being asked again has failed
    // still.
    std::map<std::string, std::string, std::less<>> failures() const;

private:
    SourceTrace& entryFor(std::string_view name);

    mutable std::mutex m_mutex; // guards what follows
    bool m_ldapAsked = false;
    std::optional<std::string> m_key;
    std::map<std::string, std::size_t, std::less<>> m_asked; // by the request that is worked: name and how often
    std::vector<SourceTrace> m_sources;
    std::map<std::string, std::string, std::less<>> m_failures;
};

// Of the nth source of a name (from 0) among those; null when it has not been asked.
const SourceTrace* traceOf(const std::vector<SourceTrace>& latest, std::string_view name, std::size_t nth);

} // namespace wideseek
