// Text for a terminal: what cannot harm it, and how wide it is there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

// False for what a terminal would obey or choke on: control characters, changes of the writing direction, line and
// paragraph separators, and -1 for a byte that is not UTF-8.
bool isHarmless(std::int32_t codePoint);

// text (UTF-8 as a rule) with U+FFFD for each character and byte that is not harmless.
std::string printable(std::string_view text);

// The columns that a printable text takes in a terminal: 2 for a wide character, 0 for one that combines.
std::size_t displayWidth(std::string_view text);

// "12.3"
std::string withOneDecimal(double number);

// Rows of cells in columns that are as wide as their widest cell.
class Table {
public:
    enum class Align { left, right };

    // One entry per column; a row has at most as many cells.
    explicit Table(std::vector<Align> columns);

    // The cells are made printable.
    void add(const std::vector<std::string>& cells);

    // Every row on a line of its own, behind indent blanks and without blanks at its end.
    void print(std::ostream& out, std::size_t indent) const;

private:
    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace wideseek
