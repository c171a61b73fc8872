#include "tools/wideseek/phone/screens/RowView.h"

#include "host/text/MatchedPart.h"
#include "tools/wideseek/phone/terminal/Paint.h"

#include <algorithm>
#include <vector>

namespace wideseek {

namespace {

using paint::fitted;
using paint::put;
using paint::wide;
using paint::widthOf;

// Makes the parts of a cell stand out that the key has found, as far as they are seen.
void putParts(int line, const RowColumns::Column& column, std::string_view text,
              const std::vector<host::text::Part>& parts, attr_t attributes) {
    const bool cut = widthOf(wide(text)) > column.width;
    for (const host::text::Part& part : parts) {
        const int before = widthOf(wide(text.substr(0, part.begin)));
        const std::wstring found = wide(text.substr(part.begin, part.size));
        put(line, column.begin + before, paint::front(found, column.width - (cut ? 1 : 0) - before),
            attributes | A_BOLD | A_UNDERLINE | paint::colour(COLOR_MAGENTA));
    }
}

void putCell(int line, const RowColumns::Column& column, std::string_view text, attr_t attributes) {
    if (column.width > 0) {
        put(line, column.begin, fitted(text, column.width), attributes);
    }
}

void putRow(int line, const WideseekItemData& row, const std::string& source, const std::string& key,
            const RowColumns& columns, bool underCursor) {
    const attr_t attributes = underCursor ? A_REVERSE : A_NORMAL;
    put(line, 0, fitted(underCursor ? ">" : "", COLS), attributes);
    putCell(line, columns.name(), row.strName, attributes);
    putCell(line, columns.number(), row.strNumber, attributes);
    putCell(line, columns.source(), source, underCursor ? attributes : attr_t(A_DIM));
    putCell(line, columns.extra(), extraOf(row), attributes);
    putParts(line, columns.name(), row.strName, host::text::matchedInName(row.strName, key), attributes);
    putParts(line, columns.number(), row.strNumber, host::text::matchedInNumber(row.strNumber, key), attributes);
}

RowColumns::Widths widthsOf(const std::vector<WideseekItemData>& rows, const std::vector<std::string>& sources) {
    RowColumns::Widths widths;
    const auto raise = [](int& width, const std::string& text) { width = std::max(width, widthOf(wide(text))); };
    for (const WideseekItemData& row : rows) {
        raise(widths.name, row.strName);
        raise(widths.number, row.strNumber);
        raise(widths.extra, extraOf(row));
    }
    for (const std::string& source : sources) {
        raise(widths.source, source);
    }
    return widths;
}

} // namespace

void paintRows(const PhoneModel& model, RowStyle& style, int line, int lines) {
    const std::vector<WideseekItemData>& rows = model.rows();
    const std::string& key = model.rowsKey();
    style.columns.fit(COLS, widthsOf(rows, style.sources), key.empty());
    static const std::string none;
    for (std::size_t i = 0; i < rows.size() && static_cast<int>(i) < lines; ++i) {
        putRow(line + static_cast<int>(i), rows[i], i < style.sources.size() ? style.sources[i] : none, key,
               style.columns, static_cast<int>(i) == model.line());
    }
}

const std::string& extraOf(const WideseekItemData& row) {
    return row.strExtra2.empty() ? row.strExtra1 : row.strExtra2;
}

} // namespace wideseek
