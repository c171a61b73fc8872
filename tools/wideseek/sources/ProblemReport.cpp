#include "tools/wideseek/sources/ProblemReport.h"

#include "tools/wideseek/Text.h"

#include <iostream>
#include <utility>

namespace wideseek {

namespace {

constexpr std::size_t mostTold = 1000; // twice what a phone lists of its files

} // namespace

ProblemReport::ProblemReport(std::filesystem::path sourceList) : m_sourceList(std::move(sourceList)) {
}

void ProblemReport::tellOf(const host::Phone& phone) {
    for (const std::string& note : m_sourceList.take()) {
        tell(note);
    }
    for (const std::string& problem : phone.problems(m_phoneProblems)) {
        tell(problem);
        ++m_phoneProblems;
    }
}

void ProblemReport::tell(const std::string& problem, const std::string& where) {
    if (m_told.size() < mostTold && m_told.insert(problem).second) {
        std::cerr << "wideseek: " << printable(where + problem) << std::endl;
    }
}

} // namespace wideseek
