#include "bench/session/Typing.h"

#include "host/text/Key.h"
#include "host/text/Utf8.h"

#include <random>
#include <string_view>
#include <utility>

namespace bench {

namespace {

constexpr std::size_t mostKeys = 8;
constexpr std::size_t mostInBurst = 10;

std::vector<std::string> beginnings(std::string_view text, std::size_t most) {
    std::vector<std::string> keys;
    std::size_t length = 0;
    while (length < text.size() && keys.size() < most) {
        length += host::text::firstCharacter(text.substr(length)).size;
        keys.emplace_back(text.substr(0, length));
    }
    return keys;
}

Session typed(Way way, std::string_view text) {
    return {way, beginnings(text, mostKeys)};
}

// One of the contact's numbers as it is typed: without the "+".
std::string_view numberOf(const DirectorySearchData& contact, std::size_t choice) {
    const std::size_t count = !contact.strNumber3.empty() ? 3 : !contact.strNumber2.empty() ? 2 : 1;
    const std::string* const numbers[] = {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3};
    std::string_view number = *numbers[choice % count];
    number.remove_prefix(number.starts_with('+') ? 1 : 0);
    return number;
}

const DirectorySearchData& contactOf(const Population& population, std::size_t i, std::mt19937& random) {
    const auto& source = population.at(i % sourceCount);
    return source.at(random() % source.size());
}

} // namespace

std::vector<Session> makeSessions(const Population& population, std::size_t contacts) {
    std::mt19937 random(8);
    std::vector<Session> sessions;
    for (std::size_t i = 0; i < contacts; ++i) {
        const DirectorySearchData& contact = contactOf(population, i, random);
        std::string digits;
        host::text::appendKeypadForm(contact.strName, digits);
        sessions.push_back(typed(Way::keypad, digits));
        sessions.push_back(typed(Way::number, numberOf(contact, random())));
        sessions.push_back(typed(Way::text, contact.strName));
    }
    return sessions;
}

std::vector<Burst> makeBursts(const Population& population, std::size_t contacts) {
    std::mt19937 random(10);
    std::vector<Burst> bursts;
    for (std::size_t i = 0; i < contacts; ++i) {
        const DirectorySearchData& contact = contactOf(population, i, random);
        Burst burst{beginnings(numberOf(contact, random()), mostInBurst), {}};
        burst.erased.assign(burst.typed.rbegin() + 1, burst.typed.rend());
        bursts.push_back(std::move(burst));
    }
    return bursts;
}

} // namespace bench
