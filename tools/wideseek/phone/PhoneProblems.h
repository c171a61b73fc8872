// What is wrong with the phone's files and sources: what is new, what holds now, and all that was.
//
//     PhoneProblems problems(phone, watch);
//     const std::string newest = problems.takeNew();   // told once
//     const std::string now = problems.standing();     // told for as long as it holds
//
// One thread.
#pragma once

#include "host/Phone.h"
#include "host/kernel/ProblemList.h"
#include "tools/wideseek/phone/SourceWatch.h"
#include "tools/wideseek/sources/SourceListNotes.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace wideseek {

class PhoneProblems {
public:
    // Both outlive this.
    PhoneProblems(const host::Phone& phone, const SourceWatch& watch);

    // Collects what has gone wrong since this was asked last; the newest of it, empty when there is nothing new. Names
    // files by their place below the phone's root.
    std::string takeNew();

    // In a line: the enabled sources that failed when they were asked last, and what is wrong with the source list. A
    // failure has its reason when it is alone. Empty: nothing.
    std::string standing() const;

    // The same, each with its reason.
    std::vector<std::string> standingEach() const;

    // Everything so far, in order of appearance.
    std::vector<std::string> all() const { return m_all.all(); }

    // What of it standingEach does not tell, with files named as there.
    std::vector<std::string> earlier() const;

private:
    // Of the source list's order; each with the reason, which may be empty.
    std::vector<std::pair<std::string, std::string>> failed() const;
    std::string brief(const std::string& problem) const;

    const host::Phone& m_phone;
    const SourceWatch& m_watch;
    const std::string m_folder; // the phone's root with its last slash
    SourceListNotes m_sourceList;
    std::size_t m_taken = 0; // of the phone's
    host::ProblemList m_all;
};

} // namespace wideseek
