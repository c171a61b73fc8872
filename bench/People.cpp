#include "bench/People.h"

#include <array>
#include <random>
#include <string>
#include <string_view>

namespace bench {

namespace {

constexpr std::array<std::string_view, 24> givenNames = {
    "Anna",  "Björn", "Carla", "Dmitri", "Émile", "Fatima", "Gökhan", "Hana",  "Ines", "Jörg", "Katarzyna", "Lea",
    "Marek", "Noor",  "Olaf",  "Paula",  "Quinn", "Rosa",   "Søren",  "Tomás", "Ulla", "Vera", "Wenzel",    "Zoë"};

constexpr std::array<std::string_view, 24> syllables = {"berg", "mann",  "stein", "ley",  "ton", "ford", "dorf", "feld",
                                                        "lund", "quist", "hoff",  "baum", "mar", "kel",  "tor",  "wil",
                                                        "ras",  "fen",   "gar",   "hol",  "jan", "pet",  "sor",  "vik"};

class Generator {
public:
    DirectorySearchData person() {
        DirectorySearchData person;
        person.strName = std::string(pick(givenNames)) + " " + surname();
        const auto numbers = 1 + m_random() % 3;
        person.strNumber1 = "+4930" + digits(7);
        person.strNumber2 = numbers > 1 ? digits(4) : "";
        person.strNumber3 = numbers > 2 ? "0171" + digits(7) : "";
        person.strExtra = "Floor " + digits(1);
        return person;
    }

private:
    template <typename Names> std::string_view pick(const Names& names) { return names[m_random() % names.size()]; }

    std::string surname() {
        std::string name(pick(syllables));
        name += pick(syllables);
        name += m_random() % 3 == 0 ? pick(syllables) : "";
        name.front() = static_cast<char>(name.front() - 'a' + 'A');
        return name;
    }

    std::string digits(std::size_t count) {
        std::string text;
        while (text.size() < count) {
            text += static_cast<char>('0' + m_random() % 10);
        }
        return text;
    }

    std::mt19937 m_random{20};
};

} // namespace

std::vector<DirectorySearchData> makePeople(std::size_t count) {
    Generator generator;
    std::vector<DirectorySearchData> people;
    people.reserve(count);
    while (people.size() < count) {
        people.push_back(generator.person());
    }
    return people;
}

} // namespace bench
