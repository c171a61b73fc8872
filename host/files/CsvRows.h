// The rows of a table of separated values (RFC 4180), one after another, with the fields of each.
//
// A malformed row becomes a problem and is skipped; reading goes on with the next line, so that a quotation mark too
// many costs one line and not the rest of the file. Blank lines and, where wanted, comments are skipped. A line number
// is that of the line on which a row begins. Of the text only the row is held that is read; one of more than longestRow
// bytes is malformed.
//
//     CsvRows rows(bytes, "contacts.csv");
//     while (rows.next()) { use(rows.field(0)); }
//     if (!rows.error().empty()) ...
#pragma once

#include "host/files/Problems.h"
#include "host/files/TextWindow.h"

#include <csv.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct CsvForm {
    enum class Comments {
        hash,          // a line that begins with "#"
        hashThenBlank, // "#" alone or with a blank behind it, so that "#1 Taxis" is a name
    };

    char separator = ',';
    Comments comments = Comments::hash;
};

class CsvRows {
public:
    static constexpr std::size_t longestRow = 4UL << 20U; // bytes

    // text must outlive the reader; file is what problems name. A byte order mark is skipped.
    CsvRows(TextWindow text, std::string file, CsvForm form = {});
    ~CsvRows();
    CsvRows(const CsvRows&) = delete;
    CsvRows& operator=(const CsvRows&) = delete;

    // Goes to the next row. False at the end, and at once when the table cannot be read (error()).
    bool next();

    // Whether the text begins with a byte order mark of UTF-16, which cannot be read.
    bool isUtf16() const { return m_utf16; }

    // The row that was given is the first line that counts: from now on a row with more fields than it has is
    // malformed. Until then a malformed row is an error of the whole table.
    void setWidth() { m_width = m_fieldCount; }

    // How many fields the row has, and the text of each (less than that many; empty beyond), without the blanks around
    // it. Valid until next().
    std::size_t size() const { return m_fieldCount; }
    std::string_view field(std::size_t place) const;

    // The row's line, its first byte in the text that was given, and the first byte behind its last line.
    std::size_t line() const { return m_line; }
    std::size_t begin() const { return m_begin; }
    std::size_t end() const { return m_next; }

    // Adds a problem of the current row: what is wrong, and what to do.
    void addProblem(std::string_view reason) { m_problems.add(m_line, reason); }

    // Where they are kept, for whoever adds to them what is made of a row.
    Problems& problemList() { return m_problems; }

    // Why the table cannot be read; empty when it can. The other ends reading with an error of the current line, or of
    // the whole file.
    const std::string& error() const { return m_error; }
    void fail(std::string_view reason) { m_error = at(m_line, reason); }
    void failWhole(std::string_view reason) { m_error = (m_file + ": ").append(reason); }

    // Takes the problems: "file:line: reason", in the order of the lines.
    std::vector<std::string> problems() { return m_problems.take(); }

private:
    void initParser();
    std::string at(std::size_t line, std::string_view reason) const;
    bool isSkipped(std::string_view line) const;
    bool nextRow();
    bool isText();
    std::string_view readRow(std::string_view line);
    bool feed(std::string_view bytes);
    void throwIfOutOfMemory() const;
    void rejectRow(std::string_view reason);
    bool hasMore();
    std::string_view takeLine();
    void skipRestOfLine();

    static void onField(void* bytes, std::size_t size, void* reader);
    static void onRow(int end, void* reader);

    TextWindow m_text; // held from m_begin on
    bool m_utf16 = false;
    std::string m_file;
    CsvForm m_form;
    csv_parser m_parser{};
    std::size_t m_next = 0;            // where the next line begins
    std::size_t m_nextLine = 1;        // its number
    std::size_t m_begin = 0;           // where the current row begins
    std::size_t m_line = 0;            // the number of its first line
    std::vector<std::string> m_fields; // of the row; the first m_fieldCount are valid
    std::size_t m_fieldCount = 0;
    bool m_rowEnded = false;
    bool m_outOfMemory = false; // while a field was taken
    bool m_cut = false;         // the line that was taken last makes the row too long, and goes on
    std::size_t m_width = 0;    // 0: not set
    std::string m_error;
    Problems m_problems;
};

} // namespace host
