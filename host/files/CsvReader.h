// Reads a table from comma-separated values (RFC 4180) whose first line names the columns, in any order.
//
// Blank lines and lines that start with "#" are skipped, a byte order mark too. A malformed line becomes a problem and
// is skipped; reading goes on with the next line, so that a quotation mark too many costs one line and not the rest of
// the file. A line number is that of the line on which a row begins.
//
//     CsvReader reader(bytes, "contacts.csv", columns);
//     while (reader.next()) { use(reader.field(nameColumn)); }
//     if (!reader.error().empty()) ...
#pragma once

#include "host/files/Problems.h"

#include <csv.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CsvColumn {
    std::string_view name;
    std::string_view otherName = {}; // for the same column
    bool needed = false;             // the table cannot be read without it
};

class CsvReader {
public:
    // text and columns must outlive the reader; file is what problems name.
    CsvReader(std::string_view text, std::string file, std::span<const CsvColumn> columns);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    // Goes to the next row. False at the end, and at once when the table cannot be read (error()).
    bool next();

    // The text of this column (a position in columns) in the row, without the blanks around it; empty when the row has
    // no such column. Valid until next().
    std::string_view field(std::size_t column) const;

    // Adds a problem of the current row: what is wrong, and what to do.
    void addProblem(std::string_view reason);

    // Why the table cannot be read; empty when it can.
    const std::string& error() const { return m_error; }

    // Takes the problems: "file:line: reason", in the order of the lines.
    std::vector<std::string> problems() { return m_problems.take(); }

private:
    void initParser();
    void readHeader();
    void nameColumn(std::size_t place, std::string_view name);
    std::string knownColumns() const;
    std::string at(std::size_t line, std::string_view reason) const;
    bool nextRow();
    bool readRow(std::string_view line);
    bool feed(std::string_view bytes);
    void throwIfOutOfMemory() const;
    void rejectRow(std::string_view reason);
    std::string_view takeLine();

    static void onField(void* bytes, std::size_t size, void* reader);
    static void onRow(int end, void* reader);

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::string_view m_text;
    std::string m_file;
    std::span<const CsvColumn> m_columns;
    csv_parser m_parser{};
    std::size_t m_next = 0;            // where the next line begins
    std::size_t m_nextLine = 1;        // its number
    std::size_t m_line = 0;            // the number of the current row's first line
    std::vector<std::string> m_fields; // of the row; the first m_fieldCount are valid
    std::size_t m_fieldCount = 0;
    bool m_rowEnded = false;
    bool m_outOfMemory = false;        // while a field was taken
    std::size_t m_width = 0;           // how many columns the first line names
    std::vector<std::size_t> m_places; // of each column in a row, or none
    std::string m_error;
    Problems m_problems;
};

} // namespace host
