#include "host/files/CsvReader.h"

#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <new>
#include <utility>

namespace host {

namespace {

constexpr unsigned char strict = CSV_STRICT | CSV_STRICT_FINI;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isSkipped(std::string_view line) {
    return line.starts_with('#') || text::trimBlanks(line).empty();
}

} // namespace

CsvReader::CsvReader(std::string_view text, std::string file, std::span<const CsvColumn> columns)
    : m_text(text), m_file(std::move(file)), m_columns(columns), m_places(columns.size(), none), m_problems(m_file) {
    initParser();
    if (m_text.starts_with(byteOrderMark)) {
        m_text.remove_prefix(byteOrderMark.size());
    }
    try {
        readHeader();
    } catch (...) {
        csv_free(&m_parser);
        throw;
    }
}

void CsvReader::initParser() {
    // A field is copied once for each block that it grows by.
    constexpr std::size_t block = 64UL * 1024;
    csv_init(&m_parser, strict);
    csv_set_blk_size(&m_parser, block);
}

CsvReader::~CsvReader() {
    csv_free(&m_parser);
}

bool CsvReader::next() {
    while (nextRow()) {
        if (m_fieldCount <= m_width) {
            return true;
        }
        rejectRow("has " + std::to_string(m_fieldCount) + " fields, but the first line names " +
                  std::to_string(m_width) + " columns - put a field that has commas in quotation marks");
    }
    return false;
}

std::string_view CsvReader::field(std::size_t column) const {
    const std::size_t place = m_places[column];
    return place < m_fieldCount ? text::trimBlanks(m_fields[place]) : std::string_view();
}

void CsvReader::addProblem(std::string_view reason) {
    m_problems.add(m_line, reason);
}

void CsvReader::readHeader() {
    if (m_text.starts_with("\xFF\xFE") || m_text.starts_with("\xFE\xFF")) {
        m_error = at(1, "is UTF-16 text - save the file as UTF-8");
        return;
    }
    if (!nextRow()) {
        if (m_error.empty()) {
            m_error = m_file + ": is empty - name the columns in its first line (" + knownColumns() + ")";
        }
        return;
    }
    m_width = m_fieldCount;
    bool named = false;
    for (std::size_t place = 0; place < m_width; ++place) {
        nameColumn(place, text::trimBlanks(m_fields[place]));
    }
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        named = named || m_places[column] != none;
        if (m_columns[column].needed && m_places[column] == none) {
            m_error = at(m_line, "names no column \"" + std::string(m_columns[column].name) + "\" - add it");
        }
    }
    if (!named) {
        m_error = at(m_line, "names no known column - the first line must name the columns (" + knownColumns() + ")");
    }
}

void CsvReader::nameColumn(std::size_t place, std::string_view name) {
    const std::string folded = text::folded(name);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (folded.empty() || (folded != m_columns[column].name && folded != m_columns[column].otherName)) {
            continue;
        }
        if (m_places[column] != none) {
            addProblem("names the column " + shown(name) + " twice - the first one is used; rename the other");
        } else {
            m_places[column] = place;
        }
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

std::string CsvReader::at(std::size_t line, std::string_view reason) const {
    return (m_file + ":" + std::to_string(line) + ": ").append(reason);
}

// Goes to the next row that is well formed; adds a problem for each one before it that is not.
bool CsvReader::nextRow() {
    while (m_error.empty() && m_next < m_text.size()) {
        m_line = m_nextLine;
        const std::size_t begin = m_next;
        const std::string_view line = takeLine();
        if (isSkipped(line)) {
            continue;
        }
        const std::size_t behindLine = m_next;
        if (!readRow(line)) {
            rejectRow(
                "a quotation mark or carriage return is out of place - put the whole field in quotation marks and "
                "double those within it");
            csv_free(&m_parser);
            initParser();
            m_next = behindLine;
            m_nextLine = m_line + 1;
        } else if (m_text.substr(begin, m_next - begin).find('\0') != std::string_view::npos) {
            rejectRow("holds a NUL byte - save the file as UTF-8 text");
        } else {
            if (!text::isUtf8(m_text.substr(begin, m_next - begin))) {
                addProblem(
                    "is not UTF-8 text, so a name in it may not be found - save the file as UTF-8 (\"CSV UTF-8\" "
                    "in a spreadsheet); kept as it is");
            }
            return true;
        }
    }
    return false;
}

// Nothing can be read when it is the first line that is malformed.
void CsvReader::rejectRow(std::string_view reason) {
    if (m_width == 0) {
        m_error = at(m_line, reason);
    } else {
        addProblem(std::string(reason) + "; line skipped");
    }
}

// The row that begins with this line, and the lines that a quotation mark in it joins to it. False: it is malformed.
bool CsvReader::readRow(std::string_view line) {
    m_fieldCount = 0;
    m_rowEnded = false;
    while (true) {
        const std::size_t body = line.size() - (line.ends_with("\r\n") ? 2 : line.ends_with('\n') ? 1 : 0);
        if (!feed(line.substr(0, body)) || m_rowEnded || !feed(line.substr(body))) {
            return false;
        }
        if (m_rowEnded) {
            return true;
        }
        if (m_next >= m_text.size()) {
            const bool whole = csv_fini(&m_parser, &onField, &onRow, this) == 0;
            throwIfOutOfMemory();
            return whole;
        }
        line = takeLine();
    }
}

bool CsvReader::feed(std::string_view bytes) {
    const bool whole = csv_parse(&m_parser, bytes.data(), bytes.size(), &onField, &onRow, this) == bytes.size();
    throwIfOutOfMemory();
    if (whole) {
        return true;
    }
    if (csv_error(&m_parser) != CSV_EPARSE) {
        throw std::bad_alloc();
    }
    return false;
}

std::string_view CsvReader::takeLine() {
    const std::size_t end = m_text.find('\n', m_next);
    const std::size_t behind = end == std::string_view::npos ? m_text.size() : end + 1;
    const std::string_view line = m_text.substr(m_next, behind - m_next);
    m_next = behind;
    ++m_nextLine;
    return line;
}

// No exception may pass through the parser, which is in C.
void CsvReader::onField(void* bytes, std::size_t size, void* reader) {
    auto& self = *static_cast<CsvReader*>(reader);
    try {
        if (self.m_fieldCount == self.m_fields.size()) {
            self.m_fields.emplace_back();
        }
        self.m_fields[self.m_fieldCount].assign(static_cast<const char*>(bytes), size);
        ++self.m_fieldCount;
    } catch (const std::bad_alloc&) {
        self.m_outOfMemory = true;
    }
}

void CsvReader::throwIfOutOfMemory() const {
    if (m_outOfMemory) {
        throw std::bad_alloc();
    }
}

void CsvReader::onRow(int /*end*/, void* reader) {
    static_cast<CsvReader*>(reader)->m_rowEnded = true;
}

} // namespace host
