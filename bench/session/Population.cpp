#include "bench/session/Population.h"

#include "bench/People.h"
#include "platform/Presence.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <random>
#include <set>
#include <utility>

namespace bench {

namespace {

constexpr std::size_t sharedOneIn = 5;

// People that can stand in one phone: no name and number belongs to two of them.
class NewPeople {
public:
    explicit NewPeople(std::size_t atMost) : m_people(makePeople(atMost + atMost / 10 + 10)) {}

    DirectorySearchData next() {
        while (!isNew(m_people.at(m_next))) {
            ++m_next;
        }
        return std::move(m_people[m_next++]);
    }

private:
    bool isNew(const DirectorySearchData& person) {
        const auto numbers = {person.strNumber1, person.strNumber2, person.strNumber3};
        for (const std::string& number : numbers) {
            if (m_seen.contains({person.strName, number})) {
                return false;
            }
        }
        for (const std::string& number : numbers) {
            if (!number.empty()) {
                m_seen.emplace(person.strName, number);
            }
        }
        return true;
    }

    std::vector<DirectorySearchData> m_people;
    std::size_t m_next = 0;
    std::set<std::pair<std::string, std::string>> m_seen;
};

std::ofstream create(const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    return file;
}

void writeContacts(const std::vector<DirectorySearchData>& contacts, const std::filesystem::path& path) {
    auto file = create(path);
    file << "name,number1,number2,number3,extra\n";
    for (const DirectorySearchData& contact : contacts) {
        file << contact.strName << ',' << contact.strNumber1 << ',' << contact.strNumber2 << ',' << contact.strNumber3
             << ',' << contact.strExtra << '\n';
    }
}

void writeBuddies(const std::vector<DirectorySearchData>& contacts, const std::filesystem::path& path) {
    auto list = nlohmann::json::array();
    for (const DirectorySearchData& contact : contacts) {
        auto attributes = nlohmann::json::array();
        for (const std::string& number : {contact.strNumber1, contact.strNumber2, contact.strNumber3}) {
            if (!number.empty()) {
                attributes.push_back(
                    {{"name", "phone"}, {"type", static_cast<int>(ATTRIBUTE_TYPE_PHONE)}, {"value", number}});
            }
        }
        list.push_back({{"id", list.size() + 1},
                        {"name", contact.strName},
                        {"info1", "Available"},
                        {"info2", contact.strExtra},
                        {"attributes", attributes}});
    }
    create(path) << list;
}

} // namespace

Population makePopulation(std::size_t contacts) {
    NewPeople newPeople(contacts);
    std::mt19937 random(5);
    const auto below = [&random](std::size_t end) { return random() % end; };
    Population population;
    for (std::size_t source = 0; source < sourceCount; ++source) {
        const std::size_t size = contacts / sourceCount + (source < contacts % sourceCount ? 1 : 0);
        for (std::size_t i = 0; i < size; ++i) {
            if (source > 0 && i % sharedOneIn == sharedOneIn - 1) {
                const auto& earlier = population.at(below(source));
                population.at(source).push_back(earlier.at(below(earlier.size())));
            } else {
                population.at(source).push_back(newPeople.next());
            }
        }
    }
    return population;
}

void writePhone(const Population& population, const std::filesystem::path& root) {
    const auto contacts = root / "config/contacts";
    writeContacts(population[localDirectory], contacts / "local_directory.csv");
    writeContacts(population[callLog], root / callLogContacts);
    writeContacts(population[remoteDirectory], contacts / "remote_directory.csv");
    writeContacts(population[broadSoftDirectory], contacts / "broadsoft_directory.csv");
    writeBuddies(population[buddies], contacts / "presence_buddies.json");
    create(root / "config/data/wideseek.xml")
        << "<root_wideseek>\n"
           "  <item id_name=\"local_directory_search\" enable=\"1\" priority=\"1\"/>\n"
           "  <item id_name=\"calllog_search\" enable=\"1\" priority=\"2\"/>\n"
           "  <item id_name=\"remote_directory_search\" enable=\"1\" priority=\"3\"/>\n"
           "  <item id_name=\"BroadSoft_directory_search\" enable=\"1\" priority=\"4\"/>\n"
           "  <item id_name=\"BroadSoft_UC_search\" enable=\"1\" priority=\"5\"/>\n"
           "</root_wideseek>\n";
}

} // namespace bench
