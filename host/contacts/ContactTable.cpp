#include "host/contacts/ContactTable.h"

#include "host/contacts/packed/PackedText.h"

#include <algorithm>
#include <string>

namespace host {

namespace {

constexpr std::size_t numbersPerContact = 3;

// The positions at which a contact with so many numbers is offered.
std::size_t positionsFor(std::size_t numbers) {
    return std::max<std::size_t>(1, (numbers + numbersPerContact - 1) / numbersPerContact);
}

// In the lowest bit of a fact's kind: its value is what is offered beside the contact.
constexpr std::size_t isExtra = 1;

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

// The numbers themselves, and the extra, are in the index.
void ContactTable::keepDetails(const Contact& contact, std::size_t first) {
    const std::string offered = extraOf(contact);
    m_record.clear();
    packSize(m_record, contact.numbers.size());
    for (const ContactNumber& number : contact.numbers) {
        packSize(m_record, static_cast<std::size_t>(number.kind));
    }
    packSize(m_record, contact.extra.empty() ? 0 : 1);
    packSize(m_record, contact.facts.size());
    for (const Contact::Fact& fact : contact.facts) {
        const bool same = fact.value == offered;
        packSize(m_record, (static_cast<std::size_t>(fact.kind) << 1U) | (same ? isExtra : 0));
        if (!same) {
            packText(m_record, fact.value);
        }
    }
    m_details.add(m_record);
    m_detailsOf.add(static_cast<std::uint32_t>(first));
}

KnownContact ContactTable::unpacked(std::size_t details) const {
    PackedText from(m_details[details]);
    std::size_t position = m_detailsOf[details];
    DirectorySearchData offered = at(position);
    KnownContact known;
    const std::size_t count = from.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0 && i % numbersPerContact == 0) {
            offered = at(++position);
        }
        known.numbers.push_back({*numbersOf(offered).at(i % numbersPerContact), static_cast<NumberKind>(from.size())});
    }
    if (from.size() != 0) {
        known.facts.push_back({"Extra", offered.strExtra});
    }
    for (std::size_t left = from.size(); left > 0; --left) {
        const std::size_t kind = from.size();
        known.facts.push_back({labelOf(static_cast<FactKind>(kind >> 1U)),
                               (kind & isExtra) != 0 ? offered.strExtra : std::string(from.text())});
    }
    return known;
}

KnownContact ContactTable::knownAt(std::size_t position) const {
    const std::size_t begun = m_detailsOf.countInFront([&](std::uint32_t first) { return first <= position; });
    if (begun > 0) {
        const std::size_t numbers = PackedText(m_details[begun - 1]).size();
        if (position < m_detailsOf[begun - 1] + positionsFor(numbers)) {
            return unpacked(begun - 1);
        }
    }
    return knownContactOf(at(position));
}

std::optional<KnownContact> ContactTable::known(const NameAndNumber& row) const {
    const auto position = find({&row, 1}).front();
    return position ? std::optional(knownAt(*position)) : std::nullopt;
}

void ContactTable::add(const DirectorySearchData& contact) {
    m_marks.add(contact);
    m_index.add(contact);
}

std::vector<std::optional<std::size_t>> ContactTable::find(std::span<const NameAndNumber> rows) const {
    return m_marks.find(rows, [this](std::size_t position) { return at(position); });
}

std::vector<bool> ContactTable::holds(std::span<const NameAndNumber> rows) const {
    return isFound(find(rows));
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
