// Checks a whole phone: its settings, the file behind every source, and whether its servers answer.
//
//     const PhoneReport report = checkPhone(root, list, true);
//     printPhoneReport(std::cout, report);
#pragma once

#include "host/SourceTrial.h"
#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/check/SourceListReport.h"

#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace wideseek {

// Something to correct.
struct PhoneFinding {
    std::string file;     // or the address of a server
    std::size_t line = 0; // from 1; 0 where there is none to name
    std::string reason;
    std::string remedy; // empty: the reason says it
};

struct TriedSource {
    std::string name; // as the trace calls it
    bool enabled = false;
    host::SourceTrial trial;
};

struct PhoneReport {
    std::vector<TriedSource> sources;
    std::vector<PhoneFinding> findings;
};

// There is a phone for the time of the call, and no other one. list: what there is to say of its source list. Without
// network no server is asked. An interrupt ends it early. Throws std::runtime_error for a root that is no folder.
PhoneReport checkPhone(const std::filesystem::path& root, const SourceListReport& list, bool network);

// "FILE:LINE: what is wrong; what to do", taken apart.
PhoneFinding findingOf(const std::string& problem);

// What each source has, then "FILE:LINE: warning: ..." for each finding.
void printPhoneReport(std::ostream& out, const PhoneReport& report);

// Adds its fields to the object of the source list's report.
void addJson(Json& object, const PhoneReport& report);

} // namespace wideseek
