// What has become of each file that was brought in, and how people and scripts read it.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace wideseek {

struct ImportedFile {
    std::string file;
    std::string form;     // "vCard", "CSV separated by commas", "LDIF"
    std::string encoding; // that it was read in
    std::string error;    // why nothing could be read; else empty

    std::size_t added = 0;      // contacts
    std::size_t merged = 0;     // of people who were there, with something new
    std::size_t known = 0;      // of people who were there, with nothing new
    std::size_t numberless = 0; // of no use to a phone, and not taken

    // "file:line: ...": who was merged, and what could not be used or is doubtful, as many as are worth listing.
    std::vector<std::string> merges;
    std::vector<std::string> problems;
    std::vector<std::string> unusedColumns;
};

struct ImportReport {
    std::string into; // the file or folder that contacts went to
    bool dryRun = false;
    std::string error; // why nothing was written; else empty
    std::string hint;  // what is still to be done for the contacts to be found; else empty
    std::vector<ImportedFile> files;

    bool hasErrors() const;
};

// What could not be read or written goes to errors, all else to out.
void printReport(std::ostream& out, std::ostream& errors, const ImportReport& report);

// One JSON object on one line. Bytes that are not UTF-8 become U+FFFD.
void printReportJson(std::ostream& out, const ImportReport& report);

} // namespace wideseek
