#include "host/contacts/ContactTable.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <functional>
#include <string_view>

namespace host {

namespace {

constexpr std::size_t numbersPerContact = 3;

std::array<const std::string*, numbersPerContact> numbersOf(const DirectorySearchData& contact) {
    return {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3};
}

std::uint32_t markOf(std::size_t nameHash, std::string_view number) {
    const std::size_t hash = nameHash * 31 + std::hash<std::string_view>()(number);
    return static_cast<std::uint32_t>(hash ^ hash >> 17U);
}

bool isOf(const DirectorySearchData& contact, const NameAndNumber& row) {
    const auto numbers = numbersOf(contact);
    return contact.strName == row.name && std::any_of(numbers.begin(), numbers.end(),
                                                      [&](const std::string* number) { return *number == row.number; });
}

// Marks that are looked for; most others are told from them by a single bit.
class Wanted {
public:
    explicit Wanted(std::span<const NameAndNumber> rows) {
        for (const NameAndNumber& row : rows) {
            m_marks.push_back(markOf(std::hash<std::string_view>()(row.name), row.number));
            m_bits.set(m_marks.back() % m_bits.size());
        }
    }

    bool maybe(std::uint32_t mark) const { return m_bits[mark % m_bits.size()]; }
    std::uint32_t at(std::size_t row) const { return m_marks[row]; }

private:
    std::bitset<8192> m_bits;
    std::vector<std::uint32_t> m_marks;
};

} // namespace

void ContactTable::add(const DirectorySearchData& contact) {
    const std::size_t nameHash = std::hash<std::string_view>()(contact.strName);
    for (const std::string* number : numbersOf(contact)) {
        m_marks.push_back(markOf(nameHash, *number));
    }
    m_index.add(contact);
}

std::vector<std::optional<std::size_t>> ContactTable::find(std::span<const NameAndNumber> rows) const {
    std::vector<std::optional<std::size_t>> found(rows.size());
    const Wanted wanted(rows);
    std::size_t missing = rows.size();
    for (std::size_t i = 0; i < m_marks.size() && missing > 0; ++i) {
        if (!wanted.maybe(m_marks[i])) {
            continue;
        }
        const std::size_t position = i / numbersPerContact;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (wanted.at(row) == m_marks[i] && !found[row] && isOf(at(position), rows[row])) {
                found[row] = position;
                --missing;
            }
        }
    }
    return found;
}

std::vector<bool> ContactTable::holds(std::span<const NameAndNumber> rows) const {
    const auto found = find(rows);
    std::vector<bool> held(found.size());
    std::transform(found.begin(), found.end(), held.begin(), [](const auto& position) { return position.has_value(); });
    return held;
}

DirectorySearchData ContactTable::at(std::size_t position) const {
    OxList<DirectorySearchData> contact;
    m_index.append(position, contact);
    return contact.Begin()->value;
}

KnownContact knownContactOf(const DirectorySearchData& contact) {
    KnownContact known;
    for (const std::string* number : numbersOf(contact)) {
        if (!number->empty()) {
            known.numbers.push_back(*number);
        }
    }
    if (!contact.strExtra.empty()) {
        known.facts.push_back({"Extra", contact.strExtra});
    }
    return known;
}

} // namespace host
