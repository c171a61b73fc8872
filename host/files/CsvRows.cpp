#include "host/files/CsvRows.h"

#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <new>
#include <utility>

namespace host {

namespace {

constexpr unsigned char strict = CSV_STRICT | CSV_STRICT_FINI;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view outOfPlace =
    "a quotation mark or carriage return is out of place - put the whole field in quotation marks and double those "
    "within it";
constexpr std::string_view tooLong = "is longer than 4 MiB - shorten its fields";
static_assert(CsvRows::longestRow == 4UL << 20U);

} // namespace

CsvRows::CsvRows(TextWindow text, std::string file, CsvForm form)
    : m_text(std::move(text)), m_file(std::move(file)), m_form(form), m_problems(m_file) {
    initParser();
    const std::string_view first = m_text.from(0, byteOrderMark.size());
    m_utf16 = first.starts_with("\xFF\xFE") || first.starts_with("\xFE\xFF");
    if (first.starts_with(byteOrderMark)) {
        m_next = byteOrderMark.size();
    }
}

void CsvRows::initParser() {
    // A field is copied once for each block that it grows by.
    constexpr std::size_t block = 64UL * 1024;
    csv_init(&m_parser, strict);
    csv_set_blk_size(&m_parser, block);
    csv_set_delim(&m_parser, static_cast<unsigned char>(m_form.separator));
}

CsvRows::~CsvRows() {
    csv_free(&m_parser);
}

bool CsvRows::next() {
    while (nextRow()) {
        if (m_width == 0 || m_fieldCount <= m_width) {
            return true;
        }
        rejectRow("has " + std::to_string(m_fieldCount) + " fields, but the first line names " +
                  std::to_string(m_width) + " columns - put a field that has a separator in quotation marks");
    }
    return false;
}

std::string_view CsvRows::field(std::size_t place) const {
    return place < m_fieldCount ? text::trimBlanks(m_fields[place]) : std::string_view();
}

std::string CsvRows::at(std::size_t line, std::string_view reason) const {
    return (m_file + ":" + std::to_string(line) + ": ").append(reason);
}

bool CsvRows::isSkipped(std::string_view line) const {
    if (line.starts_with('#')) {
        return m_form.comments == CsvForm::Comments::hash || line.size() == 1 ||
               text::trimBlanks(line.substr(1, 1)).empty();
    }
    return text::trimBlanks(line).empty();
}

// Goes to the next row that is well formed; adds a problem for each one before it that is not.
bool CsvRows::nextRow() {
    while (m_error.empty()) {
        m_begin = m_next;
        if (!hasMore()) {
            break;
        }
        m_line = m_nextLine;
        const std::string_view line = takeLine();
        const std::size_t behindLine = m_next;
        const bool cut = m_cut;
        const bool skipped = isSkipped(line);
        if (const std::string_view reason = skipped ? std::string_view() : readRow(line); !reason.empty()) {
            rejectRow(reason);
            csv_free(&m_parser);
            initParser();
            m_next = behindLine;
            m_nextLine = m_line + 1;
        } else if (!skipped && isText()) {
            return true;
        }
        if (cut) {
            skipRestOfLine();
        }
    }
    return false;
}

// Whether the row can be used; a problem when it cannot, or not as it should.
bool CsvRows::isText() {
    const std::string_view row = m_text.from(m_begin, m_next - m_begin).substr(0, m_next - m_begin);
    if (row.find('\0') != std::string_view::npos) {
        rejectRow("holds a NUL byte - save the file as UTF-8 text");
        return false;
    }
    if (!text::isUtf8(row)) {
        addProblem("is not UTF-8 text, so a name in it may not be found - save the file as UTF-8 (\"CSV UTF-8\" "
                   "in a spreadsheet); kept as it is");
    }
    return true;
}

// Nothing can be read when it is the first line that is malformed.
void CsvRows::rejectRow(std::string_view reason) {
    if (m_width == 0) {
        fail(reason);
    } else {
        addProblem(std::string(reason) + "; line skipped");
    }
}

// Reads the row that begins with this line, and the lines that a quotation mark in it joins to it. Why it is malformed;
// empty: it is not.
std::string_view CsvRows::readRow(std::string_view line) {
    m_fieldCount = 0;
    m_rowEnded = false;
    while (true) {
        const std::size_t body = line.size() - (line.ends_with("\r\n") ? 2 : line.ends_with('\n') ? 1 : 0);
        if (!feed(line.substr(0, body)) || m_rowEnded) {
            return outOfPlace;
        }
        if (m_cut) {
            return m_nextLine == m_line + 1 ? tooLong : outOfPlace;
        }
        if (!feed(line.substr(body))) {
            return outOfPlace;
        }
        if (m_rowEnded) {
            return {};
        }
        if (!hasMore()) {
            const bool whole = csv_fini(&m_parser, &onField, &onRow, this) == 0;
            throwIfOutOfMemory();
            return whole ? std::string_view() : outOfPlace;
        }
        line = takeLine();
    }
}

bool CsvRows::feed(std::string_view bytes) {
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

// Whether anything stands behind the lines that have been taken.
bool CsvRows::hasMore() {
    const std::size_t taken = m_next - m_begin;
    return m_text.from(m_begin, taken + 1).size() > taken;
}

// The row's next line with its end, or as much of it as a row may have.
std::string_view CsvRows::takeLine() {
    const std::size_t taken = m_next - m_begin;
    std::string_view row = m_text.from(m_begin, taken);
    std::size_t searched = taken;
    std::size_t end = row.find('\n', searched);
    while (end == std::string_view::npos && row.size() <= longestRow) {
        searched = row.size();
        row = m_text.from(m_begin, searched + 1);
        if (row.size() == searched) {
            break;
        }
        end = row.find('\n', searched);
    }
    const std::size_t behind = end == std::string_view::npos ? row.size() : end + 1;
    m_cut = behind > longestRow;
    row = row.substr(taken, (m_cut ? longestRow : behind) - taken);
    m_next += row.size();
    ++m_nextLine;
    return row;
}

void CsvRows::skipRestOfLine() {
    std::string_view rest;
    std::size_t end = std::string_view::npos;
    do {
        rest = m_text.from(m_next);
        end = rest.find('\n');
        m_next += end == std::string_view::npos ? rest.size() : end + 1;
    } while (end == std::string_view::npos && !rest.empty());
}

// No exception may pass through the parser, which is in C.
void CsvRows::onField(void* bytes, std::size_t size, void* reader) {
    auto& self = *static_cast<CsvRows*>(reader);
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

void CsvRows::throwIfOutOfMemory() const {
    if (m_outOfMemory) {
        throw std::bad_alloc();
    }
}

void CsvRows::onRow(int /*end*/, void* reader) {
    static_cast<CsvRows*>(reader)->m_rowEnded = true;
}

} // namespace host
