#include "tools/wideseek/phone/PhoneProblems.h"

#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/phone/EnabledSources.h"

#include <algorithm>
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
    const std::vector<std::string> each = standingEach();
    if (each.size() == 1) {
        return each.front();
    }
    std::string text;
    for (const auto& [label, reason] : failed()) {
        text += (text.empty() ? "" : ", ") + label;
    }
    text += text.empty() ? "" : " failed";
    for (const std::string& note : m_sourceList.standing()) {
        text += (text.empty() ? "" : "; ") + brief(note);
    }
    return text;
}

std::vector<std::string> PhoneProblems::standingEach() const {
    std::vector<std::string> each;
    for (const auto& [label, reason] : failed()) {
        each.push_back(label + " failed" + (reason.empty() ? "" : ": " + reason));
    }
    for (const std::string& note : m_sourceList.standing()) {
        each.push_back(brief(note));
    }
    return each;
}

std::vector<std::string> PhoneProblems::earlier() const {
    const std::vector<std::string> told = standingEach();
    std::vector<std::string> rest;
    for (const std::string& problem : m_all.all()) {
        std::string words = brief(problem);
        const auto tells = [&](const std::string& line) { return line.ends_with(words); };
        if (std::none_of(told.begin(), told.end(), tells)) {
            rest.push_back(std::move(words));
        }
    }
    return rest;
}

std::vector<std::pair<std::string, std::string>> PhoneProblems::failed() const {
    std::vector<std::pair<std::string, std::string>> result;
    const auto failures = m_watch.failures();
    for (const EnabledSource& source : enabledSources()) {
        const auto failure = source.nth == 0 ? failures.find(source.name) : failures.end();
        if (failure != failures.end()) {
            result.emplace_back(source.label, brief(failure->second));
        }
    }
    return result;
}

std::string PhoneProblems::brief(const std::string& problem) const {
    return problem.starts_with(m_folder) ? problem.substr(m_folder.size()) : problem;
}

} // namespace wideseek
