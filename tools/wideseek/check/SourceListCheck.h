// Explains a source list: what a phone makes of it, and what in it a person will want to correct.
//
//     const SourceListReport report = checkSourceList("config/data/wideseek.xml");
//     printReport(std::cout, report);
#pragma once

#include "tools/wideseek/check/SourceListReport.h"

#include <filesystem>

namespace wideseek {

// A file that gives the phone nothing to read is a report with a problem. Any thread.
SourceListReport explainSourceList(const std::filesystem::path& path);

// The same, held against what the library itself reads from the file, for which there is a phone for the time of the
// call, and no other one. Throws std::runtime_error when the two differ, or when the library or its temporary folder
// cannot be had.
SourceListReport checkSourceList(const std::filesystem::path& path);

} // namespace wideseek
