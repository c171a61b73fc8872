#include "tools/wideseek/pages/SourceAnswers.h"

#include <algorithm>
#include <utility>

namespace wideseek {

void SourceAnswers::onTrace(const host::TraceEvent& event) {
    const std::lock_guard lock(m_mutex);
    if (event.kind == host::TraceKind::sourceAsked) {
        m_failed.try_emplace(std::string(event.source), false);
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

bool SourceAnswers::areAllFailures() const {
    const std::lock_guard lock(m_mutex);
    return !m_failed.empty() &&
           std::all_of(m_failed.begin(), m_failed.end(), [](const auto& each) { return each.second; });
}

} // namespace wideseek
