#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/check/PhoneCheck.h"

namespace wideseek {

namespace {

using Outcome = host::SourceTrial::Outcome;

// For scripts.
const char* nameOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::answered:
        return "answered";
    case Outcome::failed:
        return "failed";
    case Outcome::absent:
        return "absent";
    case Outcome::unasked:
        return "unasked";
    case Outcome::givenUp:
        break;
    }
    return "given up";
}

std::string wordsFor(const host::SourceTrial& trial) {
    switch (trial.outcome) {
    case Outcome::answered:
        return trial.isServer && trial.contacts == 0
                   ? "answers"
                   : std::to_string(trial.contacts) + (trial.contacts == 1 ? " entry" : " entries");
    case Outcome::absent:
        return "no file";
    case Outcome::unasked:
        return "not asked: without the network";
    default:
        return nameOf(trial.outcome);
    }
}

} // namespace

void printPhoneReport(std::ostream& out, const PhoneReport& report) {
    out << "what the sources have\n";
    Table table({Table::Align::left, Table::Align::left, Table::Align::left});
    for (const TriedSource& source : report.sources) {
        table.add({source.name, wordsFor(source.trial), source.enabled ? "" : "not searched"});
    }
    table.print(out, 2);
    for (const PhoneFinding& finding : report.findings) {
        out << printable(finding.file) << (finding.line != 0 ? ":" + std::to_string(finding.line) : "")
            << ": warning: " << printable(finding.reason) << (finding.remedy.empty() ? "" : "; ")
            << printable(finding.remedy) << '\n';
    }
}

void addJson(Json& object, const PhoneReport& report) {
    object["sources"] = Json::array();
    for (const TriedSource& source : report.sources) {
        object["sources"].push_back({{"source", source.name},
                                     {"enabled", source.enabled},
                                     {"server", source.trial.isServer},
                                     {"outcome", nameOf(source.trial.outcome)},
                                     {"entries", source.trial.contacts}});
    }
    object["findings"] = Json::array();
    for (const PhoneFinding& finding : report.findings) {
        object["findings"].push_back(
            {{"file", finding.file}, {"line", finding.line}, {"reason", finding.reason}, {"remedy", finding.remedy}});
    }
}

} // namespace wideseek
