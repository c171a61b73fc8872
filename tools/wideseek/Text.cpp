#include "tools/wideseek/Text.h"

#include "host/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace wideseek {

namespace {

constexpr std::string_view replacement = "\uFFFD";

// One very long name does not push the other columns of all rows to the right.
constexpr std::size_t widestColumn = 40;

constexpr std::string_view gap = "  ";

void pad(std::ostream& out, std::size_t width) {
    out << std::string(width, ' ');
}

} // namespace

bool isHarmless(std::int32_t codePoint) {
    if (codePoint < 0 || (codePoint >= 0x202A && codePoint <= 0x202E) || (codePoint >= 0x2066 && codePoint <= 0x2069)) {
        return false;
    }
    const utf8proc_category_t category = utf8proc_category(codePoint);
    return category != UTF8PROC_CATEGORY_CC && category != UTF8PROC_CATEGORY_ZL && category != UTF8PROC_CATEGORY_ZP;
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const host::text::Character character = host::text::firstCharacter(text);
        result += isHarmless(character.codePoint) ? text.substr(0, character.size) : replacement;
        text.remove_prefix(character.size);
    }
    return result;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        width += static_cast<std::size_t>(std::max(0, utf8proc_charwidth(host::text::takeFirst(text).codePoint)));
    }
    return width;
}

std::string withOneDecimal(double number) {
    std::array<char, 512> text{}; // enough for any double
    std::snprintf(text.data(), text.size(), "%.1f", number);
    return text.data();
}

Table::Table(std::vector<Align> columns) : m_columns(std::move(columns)) {
}

void Table::add(const std::vector<std::string>& cells) {
    std::vector<std::string>& row = m_rows.emplace_back();
    std::transform(cells.begin(), cells.end(), std::back_inserter(row), printable);
}

void Table::print(std::ostream& out, std::size_t indent) const {
    std::vector<std::size_t> widths(m_columns.size());
    for (const auto& row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], std::min(displayWidth(row[i]), widestColumn));
        }
    }
    for (const auto& row : m_rows) {
        std::size_t owed = indent; // blanks that are written once something follows them
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::size_t width = displayWidth(row[i]);
            const std::size_t missing = widths[i] - std::min(widths[i], width);
            if (m_columns[i] == Align::right) {
                owed += missing;
            }
            if (!row[i].empty()) {
                pad(out, std::exchange(owed, 0));
                out << row[i];
            }
            owed += gap.size() + (m_columns[i] == Align::left ? missing : 0);
        }
        out << '\n';
    }
}

} // namespace wideseek
