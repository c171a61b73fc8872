#include "tools/wideseek/check/PhoneCheck.h"

#include "host/Phone.h"
#include "host/sources/SourceNames.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/phone/EnabledSources.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <utility>

namespace wideseek {

namespace {

namespace sourceName = host::sourceName;
using Outcome = host::SourceTrial::Outcome;

constexpr std::string_view sourceNames[] = {sourceName::localDirectory,     sourceName::callLog,
                                            sourceName::broadSoftDirectory, sourceName::ldap,
                                            sourceName::remoteDirectory,    sourceName::presence};

bool isEnabled(const SourceListReport& list, std::string_view name) {
    return std::any_of(list.asked.begin(), list.asked.end(),
                       [&](const ReportedSource& source) { return sourceNameOf(source.id) == name; });
}

// Where what is wrong ends and what to do begins: at the first "; " or " - " that is not within quotation marks.
std::size_t remedyAt(std::string_view text) {
    bool quoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        quoted = quoted != (text[at] == '"');
        if (!quoted && (text.substr(at).starts_with("; ") || text.substr(at).starts_with(" - "))) {
            return at;
        }
    }
    return text.size();
}

// Takes the line off the end of a place, "FILE:7"; 0 when there is none. The port of a server is no line.
std::size_t takeLine(std::string& place) {
    const std::size_t colon = place.rfind(':');
    if (colon == std::string::npos || place.find("://") != std::string::npos) {
        return 0;
    }
    std::size_t line = 0;
    const char* const end = place.data() + place.size();
    const auto [stop, error] = std::from_chars(place.data() + colon + 1, end, line);
    if (error != std::errc() || stop != end) {
        return 0;
    }
    place.erase(colon);
    return line;
}

} // namespace

PhoneFinding findingOf(const std::string& problem) {
    PhoneFinding finding;
    const std::size_t placeEnd = std::min(problem.find(": "), problem.size());
    std::string text = problem.substr(std::min(placeEnd + 2, problem.size()));
    finding.file = problem.substr(0, placeEnd);
    finding.line = takeLine(finding.file);
    if (const std::size_t entry = finding.file.rfind(":entry "); entry != std::string::npos) {
        text.insert(0, finding.file.substr(entry + 1) + ": ");
        finding.file.erase(entry);
    }
    const std::size_t end = remedyAt(text);
    finding.remedy = text.substr(std::min(end + (text.substr(end, 2) == "; " ? 2 : 3), text.size()));
    finding.reason = text.substr(0, end);
    return finding;
}

PhoneReport checkPhone(const std::filesystem::path& root, const SourceListReport& list, bool network) {
    PhoneArguments arguments;
    arguments.root = root.string();
    host::PhoneOptions options = phoneOptionsOf(arguments);
    options.network = network;
    host::Phone phone(options);
    PhoneReport report;
    std::vector<std::string> problems;
    for (const std::string_view name : sourceNames) {
        const bool enabled = isEnabled(list, name);
        host::SourceTrial trial = phone.tryOut(name, [] { return interruptedBy() != 0; });
        if (!trial.problem.empty() && (enabled || trial.outcome != Outcome::absent)) {
            problems.push_back(trial.problem);
        }
        report.sources.push_back({std::string(name), enabled, std::move(trial)});
    }
    const std::vector<std::string> found = phone.problems();
    problems.insert(problems.begin(), found.begin(), found.end());
    std::set<std::string> told;
    for (const std::string& problem : problems) {
        if (told.insert(problem).second) {
            report.findings.push_back(findingOf(problem));
        }
    }
    return report;
}

} // namespace wideseek
