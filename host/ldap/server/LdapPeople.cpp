#include "host/ldap/server/LdapPeople.h"

#include "host/text/FieldMatch.h"
#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/MatchedPart.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace host {

namespace {

bool isReadable(std::string_view name) {
    for (std::string_view rest = name; !rest.empty();) {
        if (text::takeFirst(rest).codePoint < 0) {
            return false;
        }
    }
    return !text::trimBlanks(name).empty();
}

} // namespace

LdapPeople::LdapPeople(std::string key, std::size_t limit, const LdapLimits& limits, std::function<void()> goOn)
    : m_key(std::move(key)), m_digits(text::isKeypadKey(m_key)), m_limit(limit), m_limits(limits),
      m_goOn(std::move(goOn)) {
}

// The first numbers that can be dialled, each once. They lie in memory.
LdapPeople::Numbers LdapPeople::dialableNumbers(const std::vector<Person::Number>& written,
                                                std::unordered_set<std::string>& memory) {
    Numbers numbers;
    for (const auto& [value, kind] : written) {
        m_goOn();
        if (value.size() > m_limits.numberBytes) {
            ++m_longNumbers;
            continue;
        }
        std::optional<std::string> number = text::dialableNumber(value);
        if (!number || number->empty() || memory.contains(*number)) {
            continue;
        }
        if (numbers.size() == m_limits.numbers) {
            ++m_crowded;
            break;
        }
        numbers.push_back({&*memory.insert(*std::move(number)).first, kind});
    }
    return numbers;
}

// The first name that can be shown; empty: there is none, which is counted.
std::string_view LdapPeople::usableName(const std::vector<std::string_view>& names) {
    bool tooLong = false;
    for (const std::string_view name : names) {
        m_goOn();
        if (name.size() > m_limits.nameBytes) {
            tooLong = true;
        } else if (isReadable(name)) {
            return name;
        }
    }
    ++(tooLong ? m_longNamed : m_nameless);
    return {};
}

// What can be shown, within the limits.
std::vector<KnownContact::Fact> LdapPeople::usableFacts(const std::vector<Person::Detail>& details) {
    std::vector<KnownContact::Fact> facts;
    for (const Person::Detail& detail : details) {
        m_goOn();
        const bool tooMany =
            facts.size() == m_limits.numbers || m_detailBytes + detail.text.size() > m_limits.answerBytes;
        if (tooMany || detail.text.size() > m_limits.nameBytes) {
            ++m_leftDetails;
        } else if (isReadable(detail.text)) {
            m_detailBytes += detail.text.size();
            facts.push_back({detail.label, std::string(detail.text)});
        }
    }
    return facts;
}

bool LdapPeople::add(const Person& person) {
    std::unordered_set<std::string> memory;
    const Numbers numbers = dialableNumbers(person.numbers, memory);
    if (numbers.empty()) {
        ++m_numberless;
        return true;
    }
    const auto holdsKey = [this](const Dialable& each) { return text::isIn(*each.number, m_key); };
    if (m_digits && std::none_of(numbers.begin(), numbers.end(), holdsKey)) {
        return true;
    }
    const std::string_view name = usableName(person.names);
    if (name.empty()) {
        return true;
    }
    if (m_limit != 0 && m_taken == m_limit) {
        m_peopleCut = true;
        return false;
    }
    ++m_taken;
    const auto begins = [this](const Dialable& each) { return text::beginsNumber(*each.number, m_key); };
    const bool better =
        m_digits ? std::any_of(numbers.begin(), numbers.end(), begins) : text::beginsWordsOf(name, m_key);
    LdapPerson& known = m_people.emplace_back();
    known.name = name;
    known.facts = usableFacts(person.details);
    return std::all_of(numbers.begin(), numbers.end(), [&](const Dialable& each) {
        known.numbers.push_back({*each.number, each.kind});
        return addRow(better ? m_better : m_others, name, *each.number);
    });
}

bool LdapPeople::addRow(std::list<NS_TA::LdapResultItem>& rows, std::string_view name, const std::string& number) {
    const std::size_t bytes = name.size() + number.size();
    m_rowsCut = m_better.size() + m_others.size() == m_limits.rows;
    m_bytesCut = bytes > m_limits.answerBytes - m_bytes;
    if (m_rowsCut || m_bytesCut) {
        return false;
    }
    m_bytes += bytes;
    rows.push_back({std::string(name), number});
    return true;
}

std::list<NS_TA::LdapResultItem> LdapPeople::takeRows() {
    std::list<NS_TA::LdapResultItem> rows = std::move(m_better);
    rows.splice(rows.end(), m_others);
    return rows;
}

std::vector<std::string> LdapPeople::leftOut(bool serverCut) const {
    std::vector<std::string> texts;
    const auto add = [&](bool reached, const std::string& text) {
        if (reached) {
            texts.push_back(text);
        }
    };
    const auto count = [&](std::size_t many, const std::string& text) { add(many != 0, std::to_string(many) + text); };
    const std::string more = ", more people match than are shown; a longer key finds fewer (the limit is ";
    add(m_peopleCut || serverCut, "the size limit was reached" + more + "[ldap] size_limit, or the server's own)");
    add(m_rowsCut, "the row limit was reached" + more + "[ldap] row_limit)");
    add(m_bytesCut, "the answer's limit was reached" + more + "[ldap] answer_limit_kb)");
    count(m_nameless, " people left out without a readable name (check [ldap] name_attributes)");
    count(m_longNamed, " people left out whose name is too long (the limit is [ldap] name_limit)");
    count(m_numberless, " people left out without a number that can be dialled (check [ldap] number_attributes)");
    count(m_longNumbers, " numbers left out that are too long (the limit is [ldap] number_limit)");
    count(m_leftDetails, " details left out (the limits are [ldap] name_limit, numbers_limit and answer_limit_kb)");
    count(m_crowded, " people are shown and found by their first numbers only (the limit is [ldap] numbers_limit)");
    return texts;
}

} // namespace host
