#include "tools/wideseek/type/PagePrinter.h"

#include "tools/wideseek/Text.h"

#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace wideseek {

namespace {

std::string rangeOf(const WideseekListData& data) {
    const std::string total = std::to_string(data.iTotalCount);
    if (data.listItem.empty()) {
        return "no rows of " + total;
    }
    const long long first = static_cast<long long>(data.iFromIndex) + 1;
    const long long last = data.iFromIndex + static_cast<long long>(data.listItem.size());
    return "rows " + std::to_string(first) + "-" + std::to_string(last) + " of " + total;
}

std::string titleOf(const Page& page) {
    std::ostringstream title;
    title << "Request " << page.request + 1 << ", ";
    if (page.data.strKey.empty()) {
        title << "empty key: ";
    } else {
        title << "key \"" << printable(page.data.strKey) << "\": ";
    }
    title << (page.late ? "late page" : "first page") << " after " << withOneDecimal(page.milliseconds) << " ms, "
          << rangeOf(page.data) << " (from " << page.data.iFromIndex << ", count " << page.data.iSearchCount << ")";
    return title.str();
}

// What only some sources pass through, presence for example.
std::string furtherExtraOf(const WideseekItemData& row) {
    std::string extra = row.strExtra1;
    if (row.iExtra != -1) {
        extra += (extra.empty() ? "" : ", ") + std::to_string(row.iExtra);
    }
    return extra.empty() ? extra : "[" + extra + "]";
}

} // namespace

void printPageTitle(std::ostream& out, const Page& page, bool bold) {
    out << (bold ? "\033[1m" : "") << titleOf(page) << (bold ? "\033[0m" : "") << '\n';
}

void printPage(std::ostream& out, const Page& page, bool bold) {
    printPageTitle(out, page, bold);
    Table table({Table::Align::right, Table::Align::left, Table::Align::left, Table::Align::left, Table::Align::left});
    long long number = page.data.iFromIndex;
    for (const WideseekItemData& row : page.data.listItem) {
        table.add({std::to_string(++number), row.strName, row.strNumber, row.strExtra2, furtherExtraOf(row)});
    }
    table.print(out, 2);
    out << '\n';
}

bool isBoldWelcome() {
    const char* objection = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) && !(objection && *objection);
}

} // namespace wideseek
