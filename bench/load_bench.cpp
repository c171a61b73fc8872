// What it costs to read contacts: the processor's time from their bytes to the first key that is answered, per contact
// and per byte, for a contact file (CSV), the same people as vCards, and both as "wideseek import" reads them.
//
//     wideseek_load_bench             # prints a table
//     wideseek_load_bench FOLDER      # leaves people.csv and cards.vcf there as well
#include "bench/People.h"
#include "host/contacts/FileDirectory.h"
#include "host/files/TemporaryFolder.h"
#include "host/formats/ContactExport.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t contacts = 100'000;
constexpr int turns = 5; // the best one counts

std::string csvOf(const std::vector<DirectorySearchData>& people) {
    std::string text = "name,work,mobile,home,organisation\n";
    for (const DirectorySearchData& person : people) {
        for (const std::string* field : {&person.strName, &person.strNumber1, &person.strNumber2, &person.strNumber3}) {
            text += *field + ",";
        }
        text += person.strExtra + "\n";
    }
    return text;
}

std::string cardsOf(const std::vector<DirectorySearchData>& people) {
    std::string text;
    for (const DirectorySearchData& person : people) {
        text += "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + person.strName + ";;;;\r\nFN:" + person.strName + "\r\n";
        const std::pair<const char*, const std::string*> numbers[] = {
            {"WORK,VOICE", &person.strNumber1}, {"CELL", &person.strNumber2}, {"HOME", &person.strNumber3}};
        for (const auto& [type, number] : numbers) {
            text += number->empty() ? "" : "TEL;TYPE=" + std::string(type) + ":" + *number + "\r\n";
        }
        text += "ORG:" + person.strExtra + "\r\nEND:VCARD\r\n";
    }
    return text;
}

void write(const std::filesystem::path& path, const std::string& bytes) {
    if (!(std::ofstream(path, std::ios::binary) << bytes).flush()) {
        throw std::runtime_error(path.string() + " cannot be written");
    }
}

double processorSeconds(const std::function<void()>& work) {
    double best = 1e9;
    for (int turn = 0; turn < turns; ++turn) {
        const std::clock_t begin = std::clock();
        work();
        best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return best;
}

void search(const std::filesystem::path& path) {
    host::FileDirectory directory(path, nullptr);
    OxList<DirectorySearchData> hits;
    std::string error;
    if (!directory.search("no such person", hits, error)) {
        throw std::runtime_error(error);
    }
}

void readAsExport(const std::string& bytes) {
    std::size_t count = 0;
    host::readExport(bytes, "people", {}, [&](const host::Contact&, std::size_t) { ++count; });
    if (count != contacts) {
        throw std::runtime_error("not every contact was read");
    }
}

void print(const char* what, std::size_t bytes, double seconds) {
    std::printf("| %-28s | %8.1f | %6.0f | %7.2f | %7.1f |\n", what, static_cast<double>(bytes) / 1e6, seconds * 1e3,
                seconds * 1e6 / static_cast<double>(contacts), seconds * 1e9 / static_cast<double>(bytes));
}

void measure(const std::filesystem::path& folder) {
    const auto people = bench::makePeople(contacts);
    const std::string csv = csvOf(people);
    const std::string cards = cardsOf(people);
    const std::filesystem::path csvFile = folder / "people.csv";
    const std::filesystem::path cardFile = folder / "cards.vcf";
    write(csvFile, csv);
    write(cardFile, cards);
    std::printf("| %-28s | %8s | %6s | %7s | %7s |\n", "100,000 contacts", "MB", "ms", "µs each", "ns/byte");
    std::printf("|------------------------------|---------:|-------:|--------:|--------:|\n");
    print("contact file, as a source", csv.size(), processorSeconds([&] { search(csvFile); }));
    print("vCard file, as a source", cards.size(), processorSeconds([&] { search(cardFile); }));
    print("CSV, as it is imported", csv.size(), processorSeconds([&] { readAsExport(csv); }));
    print("vCard, as it is imported", cards.size(), processorSeconds([&] { readAsExport(cards); }));
}

} // namespace

int main(int argc, char** argv) {
    try {
        const host::TemporaryFolder folder;
        measure(argc > 1 ? std::filesystem::path(argv[1]) : folder.path());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "wideseek_load_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
