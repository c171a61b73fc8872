#include "tools/wideseek/import/SamePerson.h"

#include "host/text/Fold.h"
#include "host/text/NameForm.h"

#include <algorithm>

namespace wideseek {

namespace {

using host::Contact;
using host::ContactNumber;
using host::FactKind;

constexpr std::size_t tellingDigits = 7; // fewer may be an extension of another house's

// The words of a name in an order of their own, so that "Fairweather, Zoë" is "Zoë Fairweather".
std::string nameKey(std::string_view name) {
    std::vector<std::string> words = host::text::keyWords(name);
    for (std::string& word : words) {
        word = host::text::folded(word);
    }
    std::sort(words.begin(), words.end());
    std::string key;
    for (const std::string& word : words) {
        key.append(word).append(1, ' ');
    }
    return key;
}

std::string_view significant(std::string_view number) {
    number.remove_prefix(std::min(number.find_first_not_of("+0"), number.size()));
    return number;
}

std::string_view tail(std::string_view number) {
    const std::string_view digits = significant(number);
    return digits.size() < tellingDigits ? number : digits.substr(digits.size() - tellingDigits);
}

// One for each thing by which the person may be found.
std::vector<std::string> keysOf(const Contact& contact) {
    const std::string name = nameKey(contact.name);
    std::vector<std::string> keys;
    for (const ContactNumber& number : contact.numbers) {
        keys.push_back(name + "#" + std::string(tail(number.number)));
    }
    for (const Contact::Fact& fact : contact.facts) {
        if (fact.kind == FactKind::email) {
            keys.push_back(name + "@" + host::text::folded(fact.value));
        }
    }
    return keys;
}

std::string keyOfUnknown(const Contact& contact) {
    return nameKey(contact.name) + "?";
}

bool isOneOnly(FactKind kind) {
    return kind == FactKind::organisation || kind == FactKind::department || kind == FactKind::title ||
           kind == FactKind::birthday || kind == FactKind::city;
}

bool knows(const Contact& contact, const Contact::Fact& fact) {
    return std::any_of(contact.facts.begin(), contact.facts.end(), [&](const Contact::Fact& each) {
        return each.kind == fact.kind && (isOneOnly(fact.kind) || each.value == fact.value);
    });
}

bool knows(const Contact& contact, const ContactNumber& number) {
    return std::any_of(contact.numbers.begin(), contact.numbers.end(),
                       [&](const ContactNumber& each) { return isSameNumber(each.number, number.number); });
}

} // namespace

bool isSameNumber(std::string_view a, std::string_view b) {
    const std::string_view one = significant(a);
    const std::string_view other = significant(b);
    return a == b ||
           (std::min(one.size(), other.size()) >= tellingDigits && (one.ends_with(other) || other.ends_with(one)));
}

Contact newIn(const Contact& contact, const Contact& known) {
    Contact additions;
    std::copy_if(contact.numbers.begin(), contact.numbers.end(), std::back_inserter(additions.numbers),
                 [&](const ContactNumber& number) { return !knows(known, number) && !knows(additions, number); });
    std::copy_if(contact.facts.begin(), contact.facts.end(), std::back_inserter(additions.facts),
                 [&](const Contact::Fact& fact) { return !knows(known, fact) && !knows(additions, fact); });
    if (known.extra.empty()) {
        additions.extra = contact.extra;
    }
    return additions;
}

bool hasAnything(const Contact& contact) {
    return !contact.numbers.empty() || !contact.facts.empty() || !contact.extra.empty();
}

std::optional<std::size_t> PersonIndex::find(const Contact& contact) const {
    std::vector<std::string> keys = keysOf(contact);
    keys.push_back(keyOfUnknown(contact));
    for (const std::string& key : keys) {
        if (const auto known = m_positions.find(key); known != m_positions.end()) {
            return known->second;
        }
    }
    return std::nullopt;
}

void PersonIndex::add(const Contact& contact, std::size_t position) {
    const std::vector<std::string> keys = keysOf(contact);
    for (const std::string& key : keys) {
        m_positions.emplace(key, position);
    }
    if (keys.empty()) {
        m_positions.emplace(keyOfUnknown(contact), position);
    }
}

} // namespace wideseek
