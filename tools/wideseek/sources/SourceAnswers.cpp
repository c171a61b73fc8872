#include "tools/wideseek/sources/SourceAnswers.h"

#include <algorithm>
#include <utility>

namespace wideseek {

void SourceAnswers::onTrace(const host::TraceEvent& event) {
    const std::lock_guard lock(m_mutex);
    if (event.kind == host::TraceKind::sourceAsked) {
        m_failed.try_emplace(std::string(event.source), false);
        m_asked = m_asked || !event.key.empty();
    } else if (event.kind == host::TraceKind::sourceAnswered) {
        m_failed[std::string(event.source)] = event.failed;
    }
    if (!event.problem.empty()) {
        m_problems.push_back({std::string(event.source), std::string(event.problem)});
    }
}

std::vector<SourceProblem> SourceAnswers::takeProblems() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_problems, {});
}

void SourceAnswers::notePage(const std::string& key) {
    const std::lock_guard lock(m_mutex);
    m_searched = m_searched || !key.empty();
}

std::string SourceAnswers::failure() const {
    const std::lock_guard lock(m_mutex);
    if (m_searched && !m_asked) {
        return "no source was asked, so nothing could be found; mend the source list (wideseek check explains it)";
    }
    const bool failed = !m_failed.empty() &&
                        std::all_of(m_failed.begin(), m_failed.end(), [](const auto& each) { return each.second; });
    return failed ? "every source that was asked failed, so nothing could be found; the lines above say what to mend"
                  : "";
}

} // namespace wideseek
