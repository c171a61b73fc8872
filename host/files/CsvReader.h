// Reads a table from comma-separated values (CsvRows.h) whose first line names the columns, in any order.
//
//     CsvReader reader(bytes, "contacts.csv", columns);
//     while (reader.next()) { use(reader.field(nameColumn)); }
//     if (!reader.error().empty()) ...
#pragma once

#include "host/files/CsvRows.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CsvColumn {
    std::string_view name;
    bool needed = false;   // the table cannot be read without it
    bool repeated = false; // any number of columns may be this one, also with digits behind the name: number, number2
};

class CsvReader {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    // text and columns must outlive the reader; file is what problems name.
    CsvReader(TextWindow text, std::string file, std::span<const CsvColumn> columns);

    // Goes to the next row. False at the end, and at once when the table cannot be read (error()).
    bool next() { return m_rows.next(); }

    // The text of this column (a position in columns; the first of its name) in the row, without the blanks around it;
    // empty when the row has no such column. Valid until next().
    std::string_view field(std::size_t column) const { return m_rows.field(m_places[column]); }

    // The same in the order of the file: how many columns there are, which one each is (none: an unknown one), and the
    // text in it.
    std::size_t width() const { return m_columnAt.size(); }
    std::size_t columnAt(std::size_t place) const { return m_columnAt[place]; }
    std::string_view fieldAt(std::size_t place) const { return m_rows.field(place); }

    // Adds a problem of the current row: what is wrong, and what to do.
    void addProblem(std::string_view reason) { m_rows.addProblem(reason); }

    // Where the row stands in the file.
    const CsvRows& rows() const { return m_rows; }

    // Why the table cannot be read; empty when it can.
    const std::string& error() const { return m_rows.error(); }

    // Takes the problems: "file:line: reason", in the order of the lines.
    std::vector<std::string> problems() { return m_rows.problems(); }

private:
    void readHeader();
    void nameColumn(std::size_t place, std::string_view name);
    std::string knownColumns() const;

    CsvRows m_rows;
    std::span<const CsvColumn> m_columns;
    std::vector<std::size_t> m_places;   // of each column in a row, or none
    std::vector<std::size_t> m_columnAt; // each place in a row, or none
};

} // namespace host
