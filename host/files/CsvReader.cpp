#include "host/files/CsvReader.h"

#include "host/text/Fold.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

bool isNamed(const CsvColumn& column, std::string_view folded) {
    if (!folded.starts_with(column.name)) {
        return false;
    }
    folded.remove_prefix(column.name.size());
    return folded.empty() || (column.repeated && folded.find_first_not_of("0123456789") == std::string_view::npos);
}

} // namespace

CsvReader::CsvReader(TextWindow text, std::string file, std::span<const CsvColumn> columns)
    : m_rows(std::move(text), std::move(file)), m_columns(columns), m_places(columns.size(), none) {
    readHeader();
}

void CsvReader::readHeader() {
    if (m_rows.isUtf16()) {
        m_rows.failWhole("is UTF-16 text - save it as UTF-8, or bring it in with \"wideseek import\"");
        return;
    }
    if (!m_rows.next()) {
        if (m_rows.error().empty()) {
            m_rows.failWhole("is empty - name the columns in its first line (" + knownColumns() + ")");
        }
        return;
    }
    m_columnAt.assign(m_rows.size(), none);
    for (std::size_t place = 0; place < m_rows.size(); ++place) {
        nameColumn(place, m_rows.field(place));
    }
    m_rows.setWidth();
    const auto isUnnamed = [](std::size_t place) { return place == none; };
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (m_columns[column].needed && isUnnamed(m_places[column])) {
            m_rows.fail("names no column \"" + std::string(m_columns[column].name) + "\" - add it");
        }
    }
    if (std::all_of(m_places.begin(), m_places.end(), isUnnamed)) {
        m_rows.fail("names no known column - the first line must name the columns (" + knownColumns() +
                    "); \"wideseek import\" brings in what other programs have written");
    }
}

void CsvReader::nameColumn(std::size_t place, std::string_view name) {
    const std::string folded = text::folded(name);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (!isNamed(m_columns[column], folded)) {
            continue;
        }
        if (m_places[column] != none && !m_columns[column].repeated) {
            addProblem("names the column " + shown(name) + " twice - the first one is used; rename the other");
            return;
        }
        m_columnAt[place] = column;
        m_places[column] = std::min(m_places[column], place);
        return;
    }
    addProblem("the column " + shown(name) + " is unknown and left out - known are " + knownColumns());
}

std::string CsvReader::knownColumns() const {
    std::string names;
    for (const CsvColumn& column : m_columns) {
        names.append(names.empty() ? "" : ", ").append(column.name);
    }
    return names;
}

} // namespace host
