#include "tools/wideseek/check/SourceListReport.h"

#include "tools/wideseek/Text.h"

#include <algorithm>

namespace wideseek {

namespace {

const char* nameOf(Finding::Weight weight) {
    return weight == Finding::Weight::warning ? "warning" : "note";
}

std::string placeOf(const std::string& file, Position at) {
    std::string place = file;
    for (const std::size_t number : {at.line, at.column}) {
        place += number > 0 ? ":" + std::to_string(number) : "";
    }
    return printable(place);
}

std::string errorLine(const SourceListReport& report) {
    return placeOf(report.file, report.problem->at) + ": error: " + printable(report.problem->message);
}

std::string lineOf(const SourceListReport& report, const Finding& finding) {
    return placeOf(report.file, {finding.line, 0}) + ": " + nameOf(finding.weight) + ": " + printable(finding.message);
}

void printSources(std::ostream& out, const std::vector<ReportedSource>& sources, bool numbered) {
    const auto left = Table::Align::left;
    Table table({numbered ? Table::Align::right : left, left, left, left});
    std::size_t number = 0;
    for (const ReportedSource& source : sources) {
        const std::string lead = numbered ? std::to_string(++number) : source.enabled ? "enabled" : "disabled";
        table.add({lead, source.label, source.id, "line " + std::to_string(source.line)});
    }
    table.print(out, 2);
}

Json jsonOf(const std::vector<ReportedSource>& sources) {
    Json list = Json::array();
    for (const ReportedSource& source : sources) {
        list.push_back(
            {{"line", source.line}, {"id", source.id}, {"label", source.label}, {"enabled", source.enabled}});
    }
    return list;
}

Json jsonOf(const std::vector<Finding>& findings, Finding::Weight weight) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        if (finding.weight == weight) {
            list.push_back({{"line", finding.line}, {"code", finding.code}, {"message", finding.message}});
        }
    }
    return list;
}

} // namespace

bool SourceListReport::hasWarnings() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.weight == Finding::Weight::warning; });
}

std::vector<std::string> warningsOf(const SourceListReport& report) {
    if (report.problem) {
        return {errorLine(report)};
    }
    std::vector<std::string> lines;
    for (const Finding& finding : report.findings) {
        if (finding.weight == Finding::Weight::warning) {
            lines.push_back(lineOf(report, finding));
        }
    }
    return lines;
}

void printReport(std::ostream& out, const SourceListReport& report) {
    if (report.problem) {
        out << errorLine(report) << '\n';
        return;
    }
    out << placeOf(report.file, {}) << ": "
        << (report.asked.empty() ? "no source is asked\n" : "the sources are asked and listed in this order\n");
    printSources(out, report.asked, true);
    if (!report.others.empty()) {
        out << "not asked\n";
        printSources(out, report.others, false);
    }
    for (const Finding& finding : report.findings) {
        out << lineOf(report, finding) << '\n';
    }
}

Json jsonOf(const SourceListReport& report) {
    Json object = {{"file", report.file},
                   {"error", nullptr},
                   {"asked", jsonOf(report.asked)},
                   {"notAsked", jsonOf(report.others)},
                   {"warnings", jsonOf(report.findings, Finding::Weight::warning)},
                   {"notes", jsonOf(report.findings, Finding::Weight::note)}};
    if (report.problem) {
        const FileProblem& problem = *report.problem;
        object["error"] = {{"line", problem.at.line}, {"column", problem.at.column}, {"message", problem.message}};
    }
    return object;
}

} // namespace wideseek
