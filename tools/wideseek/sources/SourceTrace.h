// What each source was asked by a search, and what came of it. Filled from the phone's events, one list per search.
//
//     case host::TraceKind::sourceAsked:
//         openTrace(sources, event);
//     case host::TraceKind::sourceAnswered:
//     case host::TraceKind::sourceAbandoned:
//         closeTrace(sources, event);
#pragma once

#include "host/kernel/Trace.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

// What a source said was wrong.
struct SourceProblem {
    std::string source;
    std::string problem;
};

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

// The source that is asked.
SourceTrace openedTrace(const host::TraceEvent& asked);

// Adds it.
void openTrace(std::vector<SourceTrace>& sources, const host::TraceEvent& asked);

// Enters what came of asking the event's source. False: no source of this name is still being asked.
bool closeTrace(std::vector<SourceTrace>& sources, const host::TraceEvent& ended);

// What came of it in a few words: "failed".
const char* outcomeOf(const SourceTrace& source);

// How long the answer took; there is one.
double millisecondsOf(const SourceTrace& source);

} // namespace wideseek
