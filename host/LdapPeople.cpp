#include "host/LdapPeople.h"

#include "host/text/Fold.h"
#include "host/text/Key.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace host {

namespace {

bool isReadable(std::string_view name) {
    for (std::string_view rest = name; !rest.empty();) {
        const text::Character character = text::firstCharacter(rest);
        if (character.codePoint < 0) {
            return false;
        }
        rest.remove_prefix(character.size);
    }
    return !text::trimBlanks(name).empty();
}

std::vector<std::string> dialableNumbers(const std::vector<std::string>& written) {
    std::vector<std::string> numbers;
    for (const std::string& value : written) {
        std::optional<std::string> number = text::dialableNumber(value);
        if (number && !number->empty() && std::find(numbers.begin(), numbers.end(), *number) == numbers.end()) {
            numbers.push_back(std::move(*number));
        }
    }
    return numbers;
}

} // namespace

LdapPeople::LdapPeople(std::string numberKey, std::size_t limit) : m_numberKey(std::move(numberKey)), m_limit(limit) {
}

bool LdapPeople::add(const Person& person) {
    std::vector<std::string> numbers = dialableNumbers(person.numbers);
    if (numbers.empty()) {
        ++m_numberless;
        return true;
    }
    const auto holdsKey = [&](const std::string& number) { return number.find(m_numberKey) != std::string::npos; };
    if (std::none_of(numbers.begin(), numbers.end(), holdsKey)) {
        return true;
    }
    const auto name = std::find_if(person.names.begin(), person.names.end(), isReadable);
    if (name == person.names.end()) {
        ++m_nameless;
        return true;
    }
    if (m_limit != 0 && m_taken == m_limit) {
        return false;
    }
    ++m_taken;
    for (std::string& number : numbers) {
        m_rows.push_back({*name, std::move(number)});
    }
    return true;
}

std::list<NS_TA::LdapResultItem> LdapPeople::takeRows() {
    return std::move(m_rows);
}

} // namespace host
