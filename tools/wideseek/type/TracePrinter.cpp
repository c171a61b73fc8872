#include "tools/wideseek/type/TracePrinter.h"

#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/Text.h"

#include <chrono>

namespace wideseek {

namespace {

double milliseconds(host::Duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

std::vector<std::string> cellsOf(const SourceTrace& source) {
    std::vector<std::string> cells = {source.name, "\"" + source.key + "\"", outcomeOf(source)};
    if (source.answered) {
        cells.push_back(std::to_string(source.contacts));
        cells.push_back(std::to_string(source.numbers));
        cells.push_back(withOneDecimal(millisecondsOf(source)));
        cells.push_back(source.problem);
    }
    return cells;
}

} // namespace

void printTrace(std::ostream& out, const TracedRequest& request) {
    out << "Trace of request " << request.request + 1 << ", key \"" << printable(request.key) << "\":\n";
    const auto left = Table::Align::left;
    const auto right = Table::Align::right;
    Table table({left, left, left, right, right, right, left});
    table.add({"source", "asked for", "outcome", "contacts", "numbers", "ms", ""});
    for (const SourceTrace& source : request.trace.sources) {
        table.add(cellsOf(source));
    }
    if (request.trace.sources.empty()) {
        out << "  no source was asked: the page was cut from the rows of the request before\n";
    } else {
        table.print(out, 2);
    }
    const auto& pages = request.trace.pages;
    if (pages.empty()) {
        out << "  no page was sent\n\n";
        return;
    }
    out << "  " << request.total << " rows in all; first page after "
        << withOneDecimal(milliseconds(pages.front() - request.trace.queued)) << " ms, last page after "
        << withOneDecimal(milliseconds(pages.back() - request.trace.queued)) << " ms\n\n";
}

void printTraceJson(std::ostream& out, const TracedRequest& request) {
    Json sources = Json::array();
    for (const SourceTrace& source : request.trace.sources) {
        Json entry = {{"source", source.name},
                      {"key", source.key},
                      {"answered", source.answered.has_value()},
                      {"abandoned", source.abandoned},
                      {"contacts", source.contacts},
                      {"numbers", source.numbers},
                      {"ms", nullptr},
                      {"failed", source.failed},
                      {"problem", source.problem}};
        if (source.answered) {
            entry["ms"] = millisecondsOf(source);
        }
        sources.push_back(std::move(entry));
    }
    Json trace = {{"request", request.request + 1}, {"key", request.key},   {"sources", sources}, {"total", nullptr},
                  {"firstPageMs", nullptr},         {"lastPageMs", nullptr}};
    if (!request.trace.pages.empty()) {
        trace["total"] = request.total;
        trace["firstPageMs"] = milliseconds(request.trace.pages.front() - request.trace.queued);
        trace["lastPageMs"] = milliseconds(request.trace.pages.back() - request.trace.queued);
    }
    printJsonLine(out, {{"trace", trace}});
}

} // namespace wideseek
