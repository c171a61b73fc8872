// What sources say while they are asked: what is wrong with them, and whether any of them works.
//
// The phone reports events on its threads; everything else may be called from any thread meanwhile. It holds no more
// than a word on each source and the problems that have not been taken.
#pragma once

#include "host/kernel/Trace.h"
#include "tools/wideseek/sources/SourceTrace.h"

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

    // A page came for this key, as the page reports it.
    void notePage(const std::string& key);

    // Why nothing could be found, whatever was searched for, and what to do: each source that was asked failed when it
    // answered last, or none was asked at all. Empty: that is not so.
    std::string failure() const;

private:
    mutable std::mutex m_mutex;           // guards what follows
    bool m_searched = false;              // a key that is not empty had its page
    bool m_asked = false;                 // a source was asked for such a key
    std::map<std::string, bool> m_failed; // by the source's name: its last answer, if any
    std::vector<SourceProblem> m_problems;
};

} // namespace wideseek
