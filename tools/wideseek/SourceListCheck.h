// Explains a source list: what the library makes of it, and what in it a person will want to correct.
//
//     const SourceListReport report = checkSourceList("config/data/wideseek.xml");
//     printReport(std::cout, report);
#pragma once

#include "tools/wideseek/SourceListReport.h"

#include <filesystem>

namespace wideseek {

// Starts a phone of its own for the time of the call. A file that gives the phone nothing to read is a report with a
// problem. Throws std::runtime_error when the library or its temporary folder cannot be had.
SourceListReport checkSourceList(const std::filesystem::path& path);

} // namespace wideseek
