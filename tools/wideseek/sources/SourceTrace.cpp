#include "tools/wideseek/sources/SourceTrace.h"

#include <algorithm>
#include <chrono>

namespace wideseek {

SourceTrace openedTrace(const host::TraceEvent& asked) {
    SourceTrace source;
    source.name = asked.source;
    source.key = asked.key;
    source.asked = asked.at;
    return source;
}

void openTrace(std::vector<SourceTrace>& sources, const host::TraceEvent& asked) {
    sources.push_back(openedTrace(asked));
}

bool closeTrace(std::vector<SourceTrace>& sources, const host::TraceEvent& ended) {
    const auto source = std::find_if(sources.begin(), sources.end(), [&](const SourceTrace& each) {
        return each.name == ended.source && !each.answered && !each.abandoned;
    });
    if (source == sources.end()) {
        return false;
    }
    if (ended.kind == host::TraceKind::sourceAbandoned) {
        source->abandoned = true;
        return true;
    }
    source->answered = ended.at;
    source->contacts = ended.contacts;
    source->numbers = ended.numbers;
    source->failed = ended.failed;
    source->problem = ended.problem;
    return true;
}

const char* outcomeOf(const SourceTrace& source) {
    if (source.abandoned) {
        return "given up for a newer key";
    }
    if (!source.answered) {
        return "no answer";
    }
    return source.failed ? "failed" : "answered";
}

double millisecondsOf(const SourceTrace& source) {
    return std::chrono::duration<double, std::milli>(*source.answered - source.asked).count();
}

} // namespace wideseek
