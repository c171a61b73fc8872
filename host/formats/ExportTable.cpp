#include "host/formats/ExportTable.h"

#include "host/files/CsvRows.h"
#include "host/formats/KindOfNumber.h"
#include "host/text/Fold.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace host {

namespace {

using Use = ColumnMeaning::Use;

constexpr std::string_view separators = ",;\t|";

// How often each byte stands in the line outside quotation marks.
std::size_t countUnquoted(std::string_view line, char wanted) {
    bool quoted = false;
    return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [&](char byte) {
        quoted = quoted != (byte == '"');
        return !quoted && byte == wanted;
    }));
}

// Takes a line "sep=;" away from the text, which then names the separator.
char takeSeparator(std::string_view& text) {
    constexpr std::string_view mark = "sep=";
    const std::size_t lineEnd = text.find_first_of("\r\n");
    if (text.starts_with(mark) && lineEnd == mark.size() + 1) {
        const char separator = text[mark.size()];
        text.remove_prefix(lineEnd); // what is left of it is a blank line
        return separator;
    }
    const std::string_view first = text.substr(0, lineEnd);
    return *std::max_element(separators.begin(), separators.end(),
                             [&](char a, char b) { return countUnquoted(first, a) < countUnquoted(first, b); });
}

std::string shownSeparator(char separator) {
    return separator == '\t' ? "tabs" : std::string(1, separator);
}

// Makes contacts of the rows.
class Table {
public:
    Table(std::string_view text, const std::string& file, const ExportOptions& options, char separator)
        : m_rows(text, file, {separator, CsvForm::Comments::hashThenBlank}), m_builder(m_rows.problemList()) {
        readHeader(options.columns);
    }

    bool next() {
        while (m_rows.next()) {
            readRow();
            const Contact& contact = m_builder.finish();
            if (!contact.name.empty() || !contact.numbers.empty()) {
                return true;
            }
            m_rows.addProblem("has neither a name nor a number - add one; line skipped");
        }
        return false;
    }

    const Contact& contact() const { return m_builder.contact(); }
    std::size_t line() const { return m_rows.line(); }

    std::vector<std::string> unusedColumns() const {
        std::vector<std::string> unused;
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (m_filled[i] && m_columns[i].use == Use::nothing) {
                unused.push_back(m_names[i].empty() ? "column " + std::to_string(i + 1) : m_names[i]);
            }
        }
        return unused;
    }

    ReadContacts result() { return {m_rows.problems(), m_rows.error()}; }

private:
    void readHeader(const ToldColumns& told) {
        if (!m_rows.next()) {
            if (m_rows.error().empty()) {
                m_rows.failWhole("is empty - give it the contacts, with the columns named in the first line");
            }
            return;
        }
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            m_names.emplace_back(m_rows.field(i));
        }
        m_rows.setWidth();
        m_columns = meaningsOf(m_names, told);
        m_filled.assign(m_names.size(), false);
        if (std::none_of(m_columns.begin(), m_columns.end(),
                         [](const ColumnMeaning& column) { return column.use == Use::number; })) {
            m_rows.fail("names no column that is known for numbers - the first line must name the columns, and --map "
                        "tells what is in one, as in --map " +
                        exampleColumn() + "=work");
        }
    }

    std::string exampleColumn() const {
        const std::string& name = m_names.back();
        return name.empty() || name.size() > 40 ? "COLUMN" : "\"" + name + "\"";
    }

    void readRow() {
        m_builder.clear();
        std::map<Use, std::string> names;
        std::map<std::string, std::string, std::less<>> addresses; // of parts, by their group
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const std::string_view text = m_rows.field(i);
            if (text.empty()) {
                continue;
            }
            m_filled[i] = true;
            const ColumnMeaning& column = m_columns[i];
            switch (column.use) {
            case Use::fullName:
            case Use::givenName:
            case Use::middleName:
            case Use::familyName:
                names[column.use].append(names[column.use].empty() ? "" : " ").append(text);
                break;
            case Use::number:
                addNumbers(column, text);
                break;
            case Use::fact:
                addFacts(column.fact, text);
                break;
            case Use::addressPart: {
                std::string& address = addresses[column.group];
                address.append(address.empty() ? "" : ", ").append(text);
                break;
            }
            case Use::wholeAddress:
                m_builder.addFact(FactKind::address, withCommas(text), m_rows.line());
                m_whole.insert(column.group);
                break;
            case Use::extra:
                m_builder.setExtra(text);
                break;
            case Use::numberLabel:
            case Use::nothing:
                break;
            }
        }
        for (const auto& [group, address] : addresses) {
            if (!m_whole.contains(group)) {
                m_builder.addFact(FactKind::address, address, m_rows.line());
            }
        }
        m_whole.clear();
        setName(names);
    }

    void setName(std::map<Use, std::string>& names) {
        std::string name = names[Use::fullName];
        if (name.empty()) {
            for (const Use part : {Use::givenName, Use::middleName, Use::familyName}) {
                name.append(name.empty() || names[part].empty() ? "" : " ").append(names[part]);
            }
        }
        m_builder.setName(name, m_rows.line());
    }

    void addNumbers(const ColumnMeaning& column, std::string_view text) {
        NumberKind kind = column.kind;
        if (column.labelColumn) {
            const NumberKind labelled = kindOfNumber(m_rows.field(*column.labelColumn));
            kind = labelled == NumberKind::unknown ? kind : labelled;
        }
        forEachValue(text, [&](std::string_view value) { m_builder.addNumber(value, kind, m_rows.line()); });
    }

    void addFacts(FactKind kind, std::string_view text) {
        forEachValue(text, [&](std::string_view value) {
            value.remove_prefix(kind == FactKind::group && value.starts_with("* ") ? 2 : 0);
            m_builder.addFact(kind, value, m_rows.line());
        });
    }

    template <typename Take> static void forEachValue(std::string_view text, Take take) {
        constexpr std::string_view between = ":::";
        for (std::size_t end = 0; end != std::string_view::npos;) {
            end = text.find(between);
            take(text::trimBlanks(text.substr(0, end)));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + between.size());
        }
    }

    // The lines of an address one behind the other.
    static std::string withCommas(std::string_view text) {
        std::string line;
        for (const char byte : text) {
            line.append(byte == '\n' ? ", " : byte == '\r' ? "" : std::string(1, byte));
        }
        return line;
    }

    CsvRows m_rows;
    ContactBuilder m_builder;
    std::vector<std::string> m_names;
    std::vector<ColumnMeaning> m_columns;
    std::vector<bool> m_filled;                 // whether a row has something in the column
    std::set<std::string, std::less<>> m_whole; // groups of the row whose address is there as a whole
};

} // namespace

ReadExport readTable(std::string_view text, const std::string& file, const ExportOptions& options,
                     const TakeExported& take) {
    const char separator = takeSeparator(text);
    Table table(text, file, options, separator);
    while (table.next()) {
        take(table.contact(), table.line());
    }
    return {"CSV separated by " + shownSeparator(separator), {}, table.unusedColumns(), table.result()};
}

} // namespace host
