// What a key costs, at 1,000, 10,000 and 100,000 contacts. Each workload stands beside what it is measured against:
//
//   FullSearch        hits of one source into rows, through the filter, to the page   - PlainRows: a loop that builds
//   the
//                     same rows into the same list and asks one ordered set of name and number once per row
//   PageCut           the same key again, a page at the front or at the very end       - PlainWalk: walking the same
//   rows NarrowAll, -Some  one digit more, which all rows or a tenth of them match          - PlainNarrow: a loop over
//   the same
//                     rows that calls the phone's match function per field needed and unlinks
//   SourceSearch      a contact file's own search for one key, hits in a list          - MemoryScan: memmem over the
//   same
//                     bytes
//
// The search's own workloads run on the stepped phone with a scripted source, on this thread, so that only the library
// is measured; every one of them includes what the source does to hand its hits over, and so do the plain loops.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "bench/People.h"
#include "host/ContactIndex.h"
#include "host/Phone.h"
#include "platform/CommonAPI.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <list>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace {

using Row = NS_WS::CWideseekAction::ItemData;

// Hands over all of its people, whatever the key.
class AllPeople : public host::ContactSource {
public:
    explicit AllPeople(std::size_t count) : m_people(bench::makePeople(count)) {}

    bool search(const std::string& /*key*/, OxList<DirectorySearchData>& hits, std::string& /*error*/) override {
        for (const DirectorySearchData& person : m_people) {
            hits.PushBack(person);
        }
        return true;
    }

private:
    std::vector<DirectorySearchData> m_people;
};

class NoScreen : public NS_TA::CTaskActionCallbackBase {
public:
    void OnTaskActionCallback(NS_TA::CTaskAction* /*pAction*/) override {}
};

std::filesystem::path makeRoot() {
    const auto root = std::filesystem::temp_directory_path() / "wideseek-bench";
    std::filesystem::create_directories(root / "config/data");
    std::ofstream(root / "config/data/wideseek.xml")
        << R"(<root_wideseek><item id_name="local_directory_search" enable="1"/></root_wideseek>)";
    return root;
}

// A search action of its own that is worked on this thread.
class SearchOnThisThread {
public:
    explicit SearchOnThisThread(std::size_t people)
        : m_phone({.root = makeRoot(),
                   .driver = host::Driver::stepped,
                   .ldapDelay = {},
                   .contactFiles = false,
                   .log = {}}) {
        m_phone.setSource(host::Source::localDirectory, std::make_shared<AllPeople>(people));
        Wideseek_PreInit();
        m_action = Wideseek_CreateSearchAction();
    }
    ~SearchOnThisThread() {
        Wideseek_DestroySearchAction(m_action);
        NS_WS::CWideseekController::ReleaseInstance();
    }
    SearchOnThisThread(const SearchOnThisThread&) = delete;
    SearchOnThisThread& operator=(const SearchOnThisThread&) = delete;

    void search(const std::string& key, int from = 0) {
        {
            const NS_WS::CWideseekAction::CHandOver handOver(*m_action, &m_screen);
            m_action->SetFromIndex(from);
            m_action->SetSearchCount(10);
            m_action->SetKey(key);
        }
        m_action->Exec();
        m_phone.kernel().advance({});
    }
    void searchAfresh(const std::string& key) {
        m_action->ResetKey();
        search(key);
    }
    int rows() const { return m_action->GetResultData().iTotalCount; }

private:
    host::Phone m_phone;
    NoScreen m_screen;
    NS_WS::CWideseekAction* m_action = nullptr;
};

std::size_t sizeOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void countRows(benchmark::State& state, int rows) {
    state.SetItemsProcessed(state.iterations() * rows);
    state.counters["rows"] = rows;
}

void fullSearch(benchmark::State& state) {
    SearchOnThisThread action(sizeOf(state));
    for (auto _ : state) {
        action.searchAfresh("0");
    }
    countRows(state, action.rows());
}

// The rows that the search makes of the same hits, with the set that keeps them from being listed twice.
struct PlainRows {
    std::list<Row> rows;
    std::set<std::pair<std::string, std::string>> seen;

    explicit PlainRows(AllPeople& people) {
        OxList<DirectorySearchData> hits;
        std::string error;
        people.search("", hits, error);
        for (auto* node = hits.Begin(); node != hits.End(); node = node->pNext) {
            const DirectorySearchData& hit = node->value;
            const std::string nameKey = CommonUnits_ToKeyString(hit.strName);
            add(hit, nameKey, hit.strNumber1, hit.strNumber2, hit.strNumber3);
            add(hit, nameKey, hit.strNumber2, hit.strNumber1, hit.strNumber3);
            add(hit, nameKey, hit.strNumber3, hit.strNumber1, hit.strNumber2);
        }
    }

    void add(const DirectorySearchData& hit, const std::string& nameKey, const std::string& number,
             const std::string& other1, const std::string& other2) {
        if (!number.empty() && seen.emplace(hit.strName, number).second) {
            rows.push_back({hit.strName, number, other1, other2, nameKey, "", hit.strExtra, -1});
        }
    }
};

void plainRows(benchmark::State& state) {
    AllPeople people(sizeOf(state));
    std::size_t rows = 0;
    for (auto _ : state) {
        const PlainRows result(people);
        rows = result.rows.size();
        benchmark::DoNotOptimize(rows);
    }
    countRows(state, static_cast<int>(rows));
}

void pageCut(benchmark::State& state) {
    SearchOnThisThread action(sizeOf(state));
    action.searchAfresh("0");
    const int rows = action.rows();
    const int from = state.range(1) == 0 ? 0 : rows - 10;
    for (auto _ : state) {
        action.search("0", from);
    }
    countRows(state, rows);
}

void plainWalk(benchmark::State& state) {
    AllPeople people(sizeOf(state));
    const PlainRows result(people);
    for (auto _ : state) {
        int rows = 0;
        for (const Row& row : result.rows) {
            rows += row.strName.empty() && row.strNumber.empty() ? 0 : 1;
        }
        benchmark::DoNotOptimize(rows);
    }
    countRows(state, static_cast<int>(result.rows.size()));
}

// Every main number begins with 4930; a tenth of them go on with a 1.
void narrow(benchmark::State& state, const char* first, const char* second) {
    SearchOnThisThread action(sizeOf(state));
    int left = 0;
    for (auto _ : state) {
        state.PauseTiming();
        action.searchAfresh(first);
        const int rows = action.rows();
        state.ResumeTiming();
        action.search(second);
        left = action.rows();
        state.counters["left"] = static_cast<double>(left) / rows;
    }
    countRows(state, left);
}

bool plainMatch(const Row& row, const std::string& key) {
    const auto isIn = [&](const std::string& field) {
        return CommonAPI_StringMatch(field, key, false, STRING_MATCH_CONTAINS) != 0;
    };
    const auto isInNumber = [&](const std::string& number) {
        return isIn(CommonAPI_TrimString(number, "+", TRIM_TYPE_BOTH_ENDS));
    };
    return isInNumber(row.strNumber) || isInNumber(row.strNumber2) || isInNumber(row.strNumber3) ||
           isIn(row.strNameKey);
}

void plainNarrow(benchmark::State& state, const char* key) {
    AllPeople people(sizeOf(state));
    std::size_t left = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto result = std::make_unique<PlainRows>(people);
        state.ResumeTiming();
        for (auto it = result->rows.begin(); it != result->rows.end();) {
            if (plainMatch(*it, key)) {
                ++it;
            } else {
                result->seen.erase({it->strName, it->strNumber});
                it = result->rows.erase(it);
            }
        }
        left = result->rows.size();
        state.PauseTiming();
        result.reset();
        state.ResumeTiming();
    }
    countRows(state, static_cast<int>(left));
}

void sourceSearch(benchmark::State& state, const char* key) {
    const host::ContactIndex index(bench::makePeople(sizeOf(state)));
    std::size_t hits = 0;
    for (auto _ : state) {
        OxList<DirectorySearchData> list;
        index.appendMatches(key, list);
        hits = list.Count();
    }
    state.counters["hits"] = static_cast<double>(hits);
}

// The bytes that a digit key is looked for in, as one piece.
std::string digitBytes(std::size_t people) {
    std::string bytes;
    for (const DirectorySearchData& person : bench::makePeople(people)) {
        for (const std::string* number : {&person.strNumber1, &person.strNumber2, &person.strNumber3}) {
            bytes += CommonAPI_TrimString(*number, "+", TRIM_TYPE_BOTH_ENDS) + '\n';
        }
        bytes += CommonUnits_ToKeyString(person.strName) + '\n';
    }
    return bytes;
}

void memoryScan(benchmark::State& state, const char* key) {
    const std::string bytes = digitBytes(sizeOf(state));
    const std::size_t size = std::strlen(key);
    std::size_t hits = 0;
    for (auto _ : state) {
        hits = 0;
        const char* at = bytes.data();
        const char* const end = at + bytes.size();
        while (const void* found = memmem(at, static_cast<std::size_t>(end - at), key, size)) {
            ++hits;
            at = static_cast<const char*>(found) + 1;
        }
        benchmark::DoNotOptimize(hits);
    }
    state.counters["hits"] = static_cast<double>(hits);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(fullSearch)->Name("FullSearch")->Apply(sizes);
BENCHMARK(plainRows)->Name("PlainRows")->Apply(sizes);
BENCHMARK(pageCut)
    ->Name("PageCut")
    ->ArgNames({"", "deep"})
    ->ArgsProduct({{1000, 10000, 100000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(plainWalk)->Name("PlainWalk")->Apply(sizes);
BENCHMARK_CAPTURE(narrow, All, "+4", "+49")->Name("NarrowAll")->Apply(sizes);
BENCHMARK_CAPTURE(plainNarrow, All, "49")->Name("PlainNarrowAll")->Apply(sizes);
BENCHMARK_CAPTURE(narrow, Some, "4930", "49301")->Name("NarrowSome")->Apply(sizes);
BENCHMARK_CAPTURE(plainNarrow, Some, "49301")->Name("PlainNarrowSome")->Apply(sizes);
BENCHMARK_CAPTURE(sourceSearch, Few, "493012345")->Name("SourceSearchFew")->Apply(sizes);
BENCHMARK_CAPTURE(memoryScan, Few, "493012345")->Name("MemoryScanFew")->Apply(sizes);
BENCHMARK_CAPTURE(sourceSearch, Many, "5")->Name("SourceSearchMany")->Apply(sizes);
BENCHMARK_CAPTURE(memoryScan, Many, "5")->Name("MemoryScanMany")->Apply(sizes);

} // namespace

BENCHMARK_MAIN();
