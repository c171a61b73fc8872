#include "tools/wideseek/phone/PhoneProblems.h"

#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/phone/EnabledSources.h"

#include <utility>

namespace wideseek {

PhoneProblems::PhoneProblems(const host::Phone& phone, const SourceWatch& watch)
    : m_phone(phone), m_watch(watch), m_folder(phone.options().root.string() + "/"),
      m_sourceList(sourceListOf(phone.options().root)) {
}

std::string PhoneProblems::takeNew() {
    std::vector<std::string> seen = m_phone.problems(m_taken);
    m_taken += seen.size();
    for (std::string& note : m_sourceList.take()) {
        seen.push_back(std::move(note));
    }
    for (const SourceTrace& source : m_watch.latest()) {
        if (!source.problem.empty()) {
            seen.push_back(source.problem);
        }
    }
    std::string newest;
    for (const std::string& problem : seen) {
        if (m_all.add(problem)) {
            newest = brief(problem);
        }
    }
    return newest;
}

std::string PhoneProblems::standing() const {
    std::string failed;
    std::string reason;
    std::size_t count = 0;
    const auto failures = m_watch.failures();
    for (const EnabledSource& source : enabledSources()) {
        const auto failure = source.nth == 0 ? failures.find(source.name) : failures.end();
        if (failure != failures.end()) {
            failed += (failed.empty() ? "" : ", ") + source.label;
            reason = failure->second;
            ++count;
        }
    }
    std::string text = failed.empty() ? failed : failed + " failed";
    for (const std::string& note : m_sourceList.standing()) {
        text += (text.empty() ? "" : "; ") + brief(note);
        ++count;
    }
    return count == 1 && !reason.empty() ? text + ": " + brief(reason) : text;
}

std::string PhoneProblems::brief(const std::string& problem) const {
    return problem.starts_with(m_folder) ? problem.substr(m_folder.size()) : problem;
}

} // namespace wideseek
