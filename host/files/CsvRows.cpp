#include "host/files/CsvRows.h"

#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <new>
#include <utility>

namespace host {

namespace {

constexpr unsigned char strict = CSV_STRICT | CSV_STRICT_FINI;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

CsvRows::CsvRows(std::string_view text, std::string file, CsvForm form)
    : m_text(text), m_file(std::move(file)), m_form(form), m_problems(m_file) {
    initParser();
    if (m_text.starts_with(byteOrderMark)) {
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
    while (m_error.empty() && m_next < m_text.size()) {
        m_line = m_nextLine;
        m_begin = m_next;
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
        } else if (m_text.substr(m_begin, m_next - m_begin).find('\0') != std::string_view::npos) {
            rejectRow("holds a NUL byte - save the file as UTF-8 text");
        } else {
            if (!text::isUtf8(m_text.substr(m_begin, m_next - m_begin))) {
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
void CsvRows::rejectRow(std::string_view reason) {
    if (m_width == 0) {
        fail(reason);
    } else {
        addProblem(std::string(reason) + "; line skipped");
    }
}

// The row that begins with this line, and the lines that a quotation mark in it joins to it. False: it is malformed.
bool CsvRows::readRow(std::string_view line) {
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

std::string_view CsvRows::takeLine() {
    const std::size_t end = m_text.find('\n', m_next);
    const std::size_t behind = end == std::string_view::npos ? m_text.size() : end + 1;
    const std::string_view line = m_text.substr(m_next, behind - m_next);
    m_next = behind;
    ++m_nextLine;
    return line;
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
