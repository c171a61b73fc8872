#include "tools/wideseek/import/ImportReport.h"

#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/Text.h"

#include <algorithm>

namespace wideseek {

namespace {

std::string countsOf(const ImportedFile& file) {
    const std::pair<std::size_t, const char*> counts[] = {{file.added, " added"},
                                                          {file.merged, " merged with what is there"},
                                                          {file.known, " there already"},
                                                          {file.numberless, " without a number, left out"}};
    std::string text;
    for (const auto& [count, what] : counts) {
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + what;
        }
    }
    return text.empty() ? "no contacts" : text;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

void printFile(std::ostream& out, std::ostream& errors, const ImportedFile& file) {
    if (!file.error.empty()) {
        errors << "wideseek: " << printable(file.error) << '\n';
        return;
    }
    out << printable(file.file) << " (" << file.form << ", " << file.encoding << "): " << countsOf(file) << '\n';
    for (const auto* lines : {&file.merges, &file.problems}) {
        for (const std::string& line : *lines) {
            out << "  " << printable(line) << '\n';
        }
    }
    if (!file.unusedColumns.empty()) {
        out << "  not taken: the columns " << printable(joined(file.unusedColumns))
            << "; --map COLUMN=FIELD takes one\n";
    }
}

} // namespace

bool ImportReport::hasErrors() const {
    return !error.empty() ||
           std::any_of(files.begin(), files.end(), [](const ImportedFile& file) { return !file.error.empty(); });
}

void printReport(std::ostream& out, std::ostream& errors, const ImportReport& report) {
    std::size_t added = 0;
    std::size_t merged = 0;
    for (const ImportedFile& file : report.files) {
        printFile(out, errors, file);
        added += file.added;
        merged += file.merged;
    }
    if (!report.error.empty()) {
        errors << "wideseek: " << printable(report.error) << '\n';
        return;
    }
    out << printable(report.into) << ": ";
    if (added + merged == 0) {
        out << "is as it was\n";
    } else {
        out << added << (added == 1 ? " contact added, " : " contacts added, ") << merged << " extended"
            << (report.dryRun ? " if it were not for --dry-run; it is as it was" : "") << '\n';
    }
    if (!report.hint.empty()) {
        out << printable(report.hint) << '\n';
    }
}

void printReportJson(std::ostream& out, const ImportReport& report) {
    Json files = Json::array();
    for (const ImportedFile& file : report.files) {
        files.push_back({{"file", file.file},
                         {"form", file.form},
                         {"encoding", file.encoding},
                         {"error", file.error.empty() ? Json() : Json(file.error)},
                         {"added", file.added},
                         {"merged", file.merged},
                         {"known", file.known},
                         {"numberless", file.numberless},
                         {"merges", file.merges},
                         {"problems", file.problems},
                         {"unusedColumns", file.unusedColumns}});
    }
    printJsonLine(out, {{"into", report.into},
                        {"dryRun", report.dryRun},
                        {"error", report.error.empty() ? Json() : Json(report.error)},
                        {"hint", report.hint.empty() ? Json() : Json(report.hint)},
                        {"files", std::move(files)}});
}

} // namespace wideseek
