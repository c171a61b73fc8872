// What each step of a search costs, at 1,000, 10,000 and 100,000 rows (contacts, for a source's own search). The table
// below is the list: each workload stands with what it is measured against and with how much more it may take.
//
//     wideseek_bench                                      times all of them
//     wideseek_bench --benchmark_filter='^(FullSearch|PlainRows)/'
//     wideseek_bench --pairs                              the table, for scripts: workload, against, at most; - where
//                                                         there is no limit
//     valgrind --tool=callgrind --toggle-collect=measured_region
//         wideseek_bench --benchmark_filter='^FullSearch/10000$' --benchmark_min_time=0
//                                                         counts the instructions of one run
//
// The search runs on the stepped phone with a scripted source, on this thread, so that only the library is measured.
// What the source does to hand over its hits is part of a full search, and of what that is measured against.

#include "bench/search/PlainWorkloads.h"
#include "bench/search/SearchWorkloads.h"
#include "bench/search/SourceWorkloads.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

extern "C" __attribute__((noinline)) void measured_region(bench::Workload* workload) {
    workload->run();
}

namespace {

using namespace bench;
using Made = std::unique_ptr<Workload>;

struct Entry {
    const char* name;
    const char* against; // null: it is measured for the record, or is what another one is measured against
    const char* atMost;  // times what `against` takes; null: no limit
    std::function<Made(std::size_t)> make;
};

std::shared_ptr<AllPeople> scripted(std::size_t rows) {
    return std::make_shared<AllPeople>(peopleOfRows(rows));
}

template <typename W, typename... Arguments> auto make(Arguments... arguments) {
    return [arguments...](std::size_t size) -> Made { return std::make_unique<W>(size, arguments...); };
}

template <typename W> Made overScript(std::size_t rows) {
    return std::make_unique<W>(scripted(rows));
}

template <typename W> Made overFile(std::size_t rows) {
    return std::make_unique<W>(fileOf(peopleOfRows(rows)));
}

// clang-format off
const std::vector<Entry> entries = {
    // Hits into rows, through the filter, to the page; against a loop that builds the same rows into the same list and
    // asks one ordered set of name and number once per row.
    {"FullSearch", "PlainRows", "1.2", overScript<FullSearch>},
    {"PlainRows", nullptr, nullptr, overScript<PlainRows<OrderedSet>>},
    {"PlainRowsHashed", nullptr, nullptr, overScript<PlainRows<HashSet>>}, // the same with a hash set
    {"PlainRowsMapped", nullptr, nullptr, overScript<PlainRows<RowMap>>},  // the same with a map of rows, as the filter is
    {"FullSearchFile", "PlainRowsFile", "1.2", overFile<FullSearch>}, // with a contact file as the source
    {"PlainRowsFile", nullptr, nullptr, overFile<PlainRows<OrderedSet>>},

    // The same key again: a page at the front, a page at the very end; against walking the same rows.
    {"PageCutFront", "PlainWalk", "1.5", make<PageCut>(false)},
    {"PageCutDeep", "PlainWalk", "1.5", make<PageCut>(true)},
    {"PlainWalk", nullptr, nullptr, make<PlainWalk>()},

    // One key more, which this many rows in a hundred match, up to the page that somebody waits for; against a loop that
    // calls the phone's match function once per field needed and unlinks.
    {"NarrowDigits1ToPage", "PlainNarrowDigits1", "1.3", make<Narrow>(Typed::digits, 1U, true)},
    {"NarrowDigits50ToPage", "PlainNarrowDigits50", "1.3", make<Narrow>(Typed::digits, 50U, true)},
    {"NarrowDigits100ToPage", "PlainNarrowDigits100", "1.3", make<Narrow>(Typed::digits, 100U, true)},
    {"NarrowText1ToPage", "PlainNarrowText1", "1.3", make<Narrow>(Typed::text, 1U, true)},
    {"NarrowText50ToPage", "PlainNarrowText50", "1.3", make<Narrow>(Typed::text, 50U, true)},
    {"NarrowText100ToPage", "PlainNarrowText100", "1.3", make<Narrow>(Typed::text, 100U, true)},
    // The same up to the end of the work, with what the search does when the page has been sent: it frees the rows that
    // it dropped, as the loop does, and keeps the set of a full search up to date, as PlainNarrowSet does for the record.
    {"NarrowDigits1", "PlainNarrowDigits1", "1.3", make<Narrow>(Typed::digits, 1U, false)},
    {"NarrowDigits50", "PlainNarrowDigits50", "1.3", make<Narrow>(Typed::digits, 50U, false)},
    {"NarrowDigits100", "PlainNarrowDigits100", "1.3", make<Narrow>(Typed::digits, 100U, false)},
    {"NarrowText1", "PlainNarrowText1", "1.3", make<Narrow>(Typed::text, 1U, false)},
    {"NarrowText50", "PlainNarrowText50", "1.3", make<Narrow>(Typed::text, 50U, false)},
    {"NarrowText100", "PlainNarrowText100", "1.3", make<Narrow>(Typed::text, 100U, false)},
    {"PlainNarrowDigits1", nullptr, nullptr, make<PlainNarrow>(Typed::digits, 1U, false)},
    {"PlainNarrowDigits50", nullptr, nullptr, make<PlainNarrow>(Typed::digits, 50U, false)},
    {"PlainNarrowDigits100", nullptr, nullptr, make<PlainNarrow>(Typed::digits, 100U, false)},
    {"PlainNarrowText1", nullptr, nullptr, make<PlainNarrow>(Typed::text, 1U, false)},
    {"PlainNarrowText50", nullptr, nullptr, make<PlainNarrow>(Typed::text, 50U, false)},
    {"PlainNarrowText100", nullptr, nullptr, make<PlainNarrow>(Typed::text, 100U, false)},
    {"PlainNarrowSetDigits1", nullptr, nullptr, make<PlainNarrow>(Typed::digits, 1U, true)},
    {"PlainNarrowSetDigits50", nullptr, nullptr, make<PlainNarrow>(Typed::digits, 50U, true)},
    {"PlainNarrowSetText1", nullptr, nullptr, make<PlainNarrow>(Typed::text, 1U, true)},
    {"PlainNarrowSetText50", nullptr, nullptr, make<PlainNarrow>(Typed::text, 50U, true)},

    // An LDAP answer of 1,000 rows into so many rows held: as costly as the answer, not as what is held. With a page,
    // the walk of a page cut comes on top.
    {"LdapMerge", "PlainMerge", nullptr, make<LdapMerge>(false)},
    {"PlainMerge", nullptr, nullptr, make<PlainMerge>()},
    {"LdapMergeAndPage", nullptr, nullptr, make<LdapMerge>(true)},

    // A contact file's search for one key, hits in a list; against memmem over the same bytes.
    {"SourceSearchFew", "MemoryScanFew", "2", make<SourceSearch>("493012345")},
    {"SourceSearchSome", "MemoryScanSome", "2", make<SourceSearch>("4711")},
    {"SourceSearchText", "MemoryScanText", "2", make<SourceSearch>("quinn feldm")},
    {"SourceSearchDigit", "MemoryScanDigit", nullptr, make<SourceSearch>("5")}, // nearly everybody: the list of hits
    {"MemoryScanFew", nullptr, nullptr, make<MemoryScan>("493012345")},
    {"MemoryScanSome", nullptr, nullptr, make<MemoryScan>("4711")},
    {"MemoryScanText", nullptr, nullptr, make<MemoryScan>("quinn feldm")},
    {"MemoryScanDigit", nullptr, nullptr, make<MemoryScan>("5")},
};
// clang-format on

void measure(benchmark::State& state, const Entry& entry) {
    const Made workload = entry.make(static_cast<std::size_t>(state.range(0)));
    workload->prepare();
    workload->run(); // reads files, binds symbols
    bool isPaused = false;
    workload->onPage = [&] {
        state.PauseTiming();
        isPaused = true;
    };
    for (auto _ : state) {
        if (workload->isUsedUp()) {
            state.PauseTiming();
            workload->prepare();
            state.ResumeTiming();
        }
        measured_region(workload.get());
        if (std::exchange(isPaused, false)) {
            state.ResumeTiming();
        }
    }
    state.counters["rows"] = static_cast<double>(workload->rows());
}

void printPairs() {
    for (const Entry& entry : entries) {
        if (entry.against) {
            std::printf("%s %s %s\n", entry.name, entry.against, entry.atMost ? entry.atMost : "-");
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--pairs") == 0) {
        printPairs();
        return 0;
    }
    for (const Entry& entry : entries) {
        benchmark::RegisterBenchmark(entry.name, [&entry](benchmark::State& state) { measure(state, entry); })
            ->RangeMultiplier(10)
            ->Range(1000, 100000)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
