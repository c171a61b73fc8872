// What keys cost on a phone's processor: one person after another is typed into a search over a contact file, on one
// thread, while an emulator counts instructions (scripts/bench-arm.sh).
//
//     wideseek_phone_bench CONTACTS      prints a line per key: the key, and the rows that it finds; then the memory
//
// Before and after each key it asks for the process's parent, which nothing else here does: at these system calls the
// emulator tells its count (bench/emulator/InstructionCount.cpp).
#include "bench/People.h"
#include "bench/search/ThisThread.h"
#include "bench/session/Heap.h"
#include "platform/CommonAPI.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

constexpr const char* everybody = "4"; // in every main number

void typeOne(bench::SearchOnThisThread& search, const std::string& key) {
    getppid();
    search.search(key);
    getppid();
    std::printf("%s\t%zu\n", key.c_str(), search.rows());
}

void type(bench::SearchOnThisThread& search, const std::string& text) {
    constexpr std::size_t most = 4;
    search.searchAfresh("no such name"); // the file has been read, and no rows are held
    for (std::size_t length = 1; length <= most && length <= text.size(); ++length) {
        typeOne(search, text.substr(0, length));
    }
    typeOne(search, text.substr(0, most));
}

} // namespace

int main(int argc, char** argv) {
    const std::size_t contacts = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 0;
    if (contacts == 0) {
        std::fputs("usage: wideseek_phone_bench CONTACTS\n", stderr);
        return EXIT_FAILURE;
    }
    const bench::People people = bench::makePeople(contacts);
    bench::SearchOnThisThread search(bench::fileOf(people));
    const DirectorySearchData& person = people[contacts / 2];
    type(search, CommonUnits_ToKeyString(person.strName));
    for (const std::string& text : {person.strNumber1, person.strName}) {
        const std::string key = CommonAPI_StringConvert(text, STRING_CONVERT_SEARCH_KEY);
        type(search, CommonAPI_TrimString(key, "+", TRIM_TYPE_BOTH_ENDS));
    }

    search.searchAfresh("no such name");
    const bench::HeapMeter meter;
    search.search(everybody);
    std::printf("bytes per row\t%.0f\n", static_cast<double>(meter.count().bytes) / static_cast<double>(search.rows()));
    return EXIT_SUCCESS;
}
