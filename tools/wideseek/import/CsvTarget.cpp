#include "tools/wideseek/import/CsvTarget.h"

#include "host/contacts/ContactFile.h"

#include <stdexcept>
#include <string_view>
#include <utility>

namespace wideseek {

namespace {

using host::Contact;
using Cells = std::vector<std::string>;

constexpr std::string_view newHeader = "name\n";

std::string_view nameOfColumn(std::size_t column) {
    return host::contactColumns()[column].name;
}

// Puts text into the first free cell of such a column; where there is none, into a new column behind the others.
void put(std::size_t column, const std::string& text, std::vector<std::size_t>& columns, Cells& cells) {
    if (text.empty()) {
        return;
    }
    std::size_t place = 0;
    while (place < columns.size() && (columns[place] != column || (place < cells.size() && !cells[place].empty()))) {
        ++place;
    }
    if (place == columns.size()) {
        columns.push_back(column);
    }
    cells.resize(std::max(cells.size(), place + 1));
    cells[place] = text;
}

void put(const Contact& contact, std::vector<std::size_t>& columns, Cells& cells) {
    put(host::contactNameColumn(), contact.name, columns, cells);
    for (const host::ContactNumber& number : contact.numbers) {
        put(host::contactColumnOf(number.kind), number.number, columns, cells);
    }
    put(host::contactExtraColumn(), contact.extra, columns, cells);
    for (const Contact::Fact& fact : contact.facts) {
        put(host::contactColumnOf(fact.kind), fact.value, columns, cells);
    }
}

void appendCell(const std::string& cell, std::string& line) {
    const bool plain = cell.find_first_of(",\"\r\n") == std::string::npos && !cell.starts_with('#') &&
                       !cell.starts_with(' ') && !cell.ends_with(' ');
    if (plain) {
        line += cell;
        return;
    }
    line += '"';
    for (const char byte : cell) {
        line.append(byte == '"' ? 2 : 1, byte);
    }
    line += '"';
}

std::string lineOf(const Cells& cells, std::string_view lineEnd) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line.append(i == 0 ? "" : ",");
        appendCell(cells[i], line);
    }
    return line.append(lineEnd);
}

std::string_view lineEndOf(std::string_view line) {
    return line.ends_with("\r\n") ? "\r\n" : line.ends_with('\n') ? "\n" : "";
}

} // namespace

CsvTarget::CsvTarget(std::filesystem::path path, std::string bytes)
    : TargetFile(std::move(path)), m_bytes(bytes.empty() ? std::string(newHeader) : std::move(bytes)) {
    host::CsvReader reader(m_bytes, this->path().string(), host::contactColumns());
    m_header = {reader.rows().begin(), reader.rows().end()};
    for (std::size_t place = 0; place < reader.width(); ++place) {
        m_columns.push_back(reader.columnAt(place));
    }
    while (reader.next()) {
        if (auto contact = host::contactIn(reader)) {
            m_contacts.push_back(*std::move(contact));
            m_rows.push_back({reader.rows().begin(), reader.rows().end()});
        }
    }
    if (!reader.error().empty()) {
        throw std::runtime_error(reader.error());
    }
}

CsvTarget::Cells CsvTarget::cellsAt(const Range& range) const {
    host::CsvRows row(std::string_view(m_bytes).substr(range.begin, range.end - range.begin), path().string());
    Cells cells;
    if (row.next()) {
        for (std::size_t place = 0; place < row.size(); ++place) {
            cells.emplace_back(row.field(place));
        }
    }
    return cells;
}

std::string CsvTarget::bytes() const {
    const std::string_view all = m_bytes;
    const std::string_view header = all.substr(m_header.begin, m_header.end - m_header.begin);
    const std::string_view lineEnd = lineEndOf(header).empty() ? "\n" : lineEndOf(header);
    Columns columns = m_columns;
    std::string behind; // the header
    std::size_t copied = m_header.end;
    for (const auto& [contact, additions] : m_extended) {
        const Range& row = m_rows[contact];
        Cells cells = cellsAt(row);
        put(additions, columns, cells);
        behind.append(all.substr(copied, row.begin - copied)).append(lineOf(cells, lineEnd));
        copied = row.end;
    }
    behind.append(all.substr(copied));
    if (!behind.empty() && !behind.ends_with('\n')) {
        behind.append(lineEnd);
    }
    for (const Contact& contact : m_appended) {
        Cells cells;
        put(contact, columns, cells);
        behind.append(lineOf(cells, lineEnd));
    }
    std::string result(all.substr(0, m_header.end - lineEndOf(header).size()));
    for (std::size_t place = m_columns.size(); place < columns.size(); ++place) {
        result.append(",").append(nameOfColumn(columns[place]));
    }
    return result.append(lineEnd).append(behind);
}

} // namespace wideseek
