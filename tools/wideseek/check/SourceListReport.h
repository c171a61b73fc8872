// What there is to say about a source list, and how people and scripts read it.
#pragma once

#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/check/SourceListFile.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace wideseek {

struct ReportedSource {
    std::size_t line = 0;
    std::string id;
    std::string label;
    bool enabled = true;
};

struct Finding {
    enum class Weight {
        warning, // something to correct
        note,    // works as it stands, and may surprise
    };

    Weight weight = Weight::warning;
    std::size_t line = 0;
    const char* code = ""; // for scripts
    std::string message;   // for people
};

struct SourceListReport {
    std::string file;
    std::optional<FileProblem> problem; // why the phone reads no sources from the file
    std::vector<ReportedSource> asked;  // in the order in which the phone asks and lists them
    std::vector<ReportedSource> others; // in the order of the file
    std::vector<Finding> findings;      // in the order of the file

    bool hasWarnings() const;
};

// The error or the warnings, a line each: "FILE:LINE: warning: ...".
std::vector<std::string> warningsOf(const SourceListReport& report);

// The sources in two tables, then "FILE:LINE: warning: ..." for each finding.
void printReport(std::ostream& out, const SourceListReport& report);

// The same for scripts.
Json jsonOf(const SourceListReport& report);

} // namespace wideseek
