#include "host/contacts/ContactTable.h"

#include "host/contacts/PackedText.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <functional>
#include <iterator>
#include <string_view>
#include <utility>

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

// Whether there is more to know of it than a search offers at one position.
bool hasDetails(const Contact& contact) {
    return contact.numbers.size() > numbersPerContact || !contact.facts.empty() ||
           std::any_of(contact.numbers.begin(), contact.numbers.end(),
                       [](const ContactNumber& number) { return number.kind != NumberKind::unknown; });
}

} // namespace

void ContactTable::add(const Contact& contact) {
    const std::size_t first = m_index.size();
    const std::string extra = extraOf(contact);
    std::size_t next = 0;
    do {
        DirectorySearchData offered{contact.name, {}, {}, {}, extra};
        for (std::string* number : {&offered.strNumber1, &offered.strNumber2, &offered.strNumber3}) {
            if (next < contact.numbers.size()) {
                *number = contact.numbers[next++].number;
            }
        }
        add(offered);
    } while (next < contact.numbers.size());
    if (hasDetails(contact)) {
        keepDetails(contact, first);
    }
}

void ContactTable::keepDetails(const Contact& contact, std::size_t first) {
    m_details.push_back({first, m_index.size(), m_detailBytes.size()});
    packNumber(m_detailBytes, static_cast<int>(contact.numbers.size()));
    for (const ContactNumber& number : contact.numbers) {
        packText(m_detailBytes, number.number);
        packNumber(m_detailBytes, static_cast<int>(number.kind));
    }
    packText(m_detailBytes, contact.extra);
    packNumber(m_detailBytes, static_cast<int>(contact.facts.size()));
    for (const Contact::Fact& fact : contact.facts) {
        packNumber(m_detailBytes, static_cast<int>(fact.kind));
        packText(m_detailBytes, fact.value);
    }
}

KnownContact ContactTable::unpacked(const Details& details) const {
    PackedText from(std::string_view(m_detailBytes).substr(details.begin));
    KnownContact known;
    for (int left = from.number(); left > 0; --left) {
        std::string number = from.text();
        known.numbers.push_back({std::move(number), static_cast<NumberKind>(from.number())});
    }
    if (std::string extra = from.text(); !extra.empty()) {
        known.facts.push_back({"Extra", std::move(extra)});
    }
    for (int left = from.number(); left > 0; --left) {
        const auto kind = static_cast<FactKind>(from.number());
        known.facts.push_back({labelOf(kind), from.text()});
    }
    return known;
}

KnownContact ContactTable::knownAt(std::size_t position) const {
    const auto behind = std::upper_bound(m_details.begin(), m_details.end(), position,
                                         [](std::size_t at, const Details& details) { return at < details.first; });
    if (behind != m_details.begin() && position < std::prev(behind)->end) {
        return unpacked(*std::prev(behind));
    }
    return knownContactOf(at(position));
}

std::optional<KnownContact> ContactTable::known(const NameAndNumber& row) const {
    const auto position = find({&row, 1}).front();
    return position ? std::optional(knownAt(*position)) : std::nullopt;
}

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
            known.numbers.push_back({*number});
        }
    }
    if (!contact.strExtra.empty()) {
        known.facts.push_back({"Extra", contact.strExtra});
    }
    return known;
}

} // namespace host
