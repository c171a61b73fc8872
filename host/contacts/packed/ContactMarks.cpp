#include "host/contacts/packed/ContactMarks.h"

#include <algorithm>
#include <bitset>
#include <limits>
#include <string_view>
#include <utility>

namespace host {

namespace {

std::uint16_t markOf(std::size_t nameHash, std::string_view number) {
    std::uint64_t hash = nameHash * std::uint64_t{31} + std::hash<std::string_view>()(number);
    hash ^= hash >> 17U;
    return static_cast<std::uint16_t>(hash ^ hash >> 32U);
}

bool isOf(const DirectorySearchData& contact, const NameAndNumber& row) {
    const auto numbers = numbersOf(contact);
    return contact.strName == row.name && std::any_of(numbers.begin(), numbers.end(),
                                                      [&](const std::string* number) { return *number == row.number; });
}

// The rows that have not been found, by their marks.
class Wanted {
public:
    explicit Wanted(std::span<const NameAndNumber> rows) : m_left(rows.size()), m_found(rows.size()) {
        for (const NameAndNumber& row : rows) {
            m_marks.push_back(markOf(std::hash<std::string_view>()(row.name), row.number));
            m_bits.set(m_marks.back());
        }
    }

    std::size_t left() const { return m_left; }
    bool maybe(std::uint16_t mark) const { return m_bits[mark]; }
    bool maybe(std::uint16_t mark, std::size_t row) const { return m_marks[row] == mark && !m_found[row]; }

    void found(std::size_t row, std::size_t position) {
        m_found[row] = position;
        --m_left;
    }
    std::vector<std::optional<std::size_t>> take() { return std::move(m_found); }

private:
    std::bitset<std::numeric_limits<std::uint16_t>::max() + 1> m_bits;
    std::vector<std::uint16_t> m_marks;
    std::size_t m_left;
    std::vector<std::optional<std::size_t>> m_found;
};

} // namespace

std::array<const std::string*, 3> numbersOf(const DirectorySearchData& contact) {
    return {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3};
}

std::vector<bool> isFound(const std::vector<std::optional<std::size_t>>& positions) {
    std::vector<bool> found(positions.size());
    std::transform(positions.begin(), positions.end(), found.begin(),
                   [](const auto& position) { return position.has_value(); });
    return found;
}

void ContactMarks::add(const DirectorySearchData& contact) {
    const std::size_t nameHash = std::hash<std::string_view>()(contact.strName);
    Marks marks{};
    const auto numbers = numbersOf(contact);
    std::transform(numbers.begin(), numbers.end(), marks.begin(),
                   [&](const std::string* number) { return markOf(nameHash, *number); });
    m_marks.add(marks);
}

std::vector<std::optional<std::size_t>>
ContactMarks::find(std::span<const NameAndNumber> rows,
                   const std::function<DirectorySearchData(std::size_t)>& at) const {
    Wanted wanted(rows);
    std::size_t position = 0;
    for (const std::vector<Marks>& part : m_marks.parts()) {
        for (auto marks = part.begin(); marks != part.end() && wanted.left() > 0; ++marks, ++position) {
            for (const std::uint16_t mark : *marks) {
                for (std::size_t row = 0; wanted.maybe(mark) && row < rows.size(); ++row) {
                    if (wanted.maybe(mark, row) && isOf(at(position), rows[row])) {
                        wanted.found(row, position);
                    }
                }
            }
        }
    }
    return wanted.take();
}

} // namespace host
