// What sources say while they are asked: what is wrong with them, and whether any of them works.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile. It holds no more
// than a word on each source and the problems that have not been taken.
#pragma once

#include "host/kernel/Trace.h"
#include "tools/wideseek/SourceTrace.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace wideseek {

class SourceAnswers : public host::TraceSink {
public:
    void onTrace(const host::TraceEvent& event) override;

    // The problems that sources told of since this was asked last.
    std::vector<SourceProblem> takeProblems();

    // True when sources have been asked, and each of them failed when it answered last.
    bool areAllFailures() const;

private:
    mutable std::mutex m_mutex;           // guards what follows
    std::map<std::string, bool> m_failed; // by the source's name: its last answer, if any
    std::vector<SourceProblem> m_problems;
};

} // namespace wideseek
