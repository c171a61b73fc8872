// Tells the user, on the standard error output and each thing once, what is wrong with the phone: with its files, with
// its source list and with its sources.
//
//     ProblemReport report(sourceListOf(root));
//     report.tellOf(phone);                      // now and then
//     report.tell(problem.problem, problem.source + ": ");
//
// One thread. However long it runs, it remembers no more than a thousand problems, and tells no more.
#pragma once

#include "host/Phone.h"
#include "tools/wideseek/sources/SourceListNotes.h"

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>

namespace wideseek {

class ProblemReport {
public:
    explicit ProblemReport(std::filesystem::path sourceList);

    // What has turned up since this was called last: in the source list, and in the phone's files.
    void tellOf(const host::Phone& phone);

    // Tells a problem, with the place in front of it. One that has been told is not told again, nor at another place.
    void tell(const std::string& problem, const std::string& where = {});

private:
    SourceListNotes m_sourceList;
    std::size_t m_phoneProblems = 0; // how many of the phone's have been told
    std::set<std::string> m_told;
};

} // namespace wideseek
