// Whole typing sessions on the phone as it runs: what a person waits from a key to its page, at 1,000, 10,000 and
// 100,000 contacts in five sources (session/Population.h), typed in three ways (session/Typing.h). Each key is answered
// by
//
//   wideseek  the library on the live phone with contact files, from Wideseek_SearchUnion to the page (LivePhone.h)
//   floor     a memmem scan over prepared bytes that narrows to the rows that are left, views only (ScanFloor.h)
//   plain     fold and scan every contact, copy the hits, drop duplicates through an ordered set (PlainSearch.h)
//   fts5      SQLite's full text index of trigrams, rows grouped by name and number (Fts5Search.h)
//
// The library sends a page that the sources in front fill before it asks the others; its next key is typed when that
// work has ended too, and the time until then is told beside the time to the page. The other three have their page at
// the end of their work. Every key is typed on wideseek and floor, whose costs depend on the keys before. The other two
// keep nothing between keys; they are timed once for each different key, and the time counts as often as the key is
// typed.
//
// Afterwards the first pages and the totals of some sessions are compared: they must be the same.
//
// The library alone answers bursts: up to ten keys, one every 2 ms, and their erasing, from the last key to its page,
// and against the same key typed alone.
//
// Beside that: the two hand-overs of an empty request, which goes before each session; what the caller's thread waits
// while a full search runs; and the memory that the rows take.

#include "bench/session/AwakeProcessors.h"
#include "bench/session/Fts5Search.h"
#include "bench/session/LivePhone.h"
#include "bench/session/Memory.h"
#include "bench/session/PlainSearch.h"
#include "bench/session/ScanFloor.h"
#include "bench/session/Times.h"
#include "bench/session/Typing.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <thread>
#include <tuple>
#include <unordered_map>

namespace {

using namespace bench;
using Json = nlohmann::ordered_json;

constexpr std::size_t callerRounds = 50;
constexpr std::size_t pauses = 100;
constexpr std::chrono::milliseconds pause(10);
constexpr std::size_t bursts = 25;
constexpr std::chrono::milliseconds burstGap(2);
constexpr const char* everybody = "4"; // in every main number

struct Options {
    std::vector<std::size_t> contacts{1000, 10000, 100000};
    std::size_t typed = 200;
    std::vector<std::string> only;
    std::string jsonFile;

    bool wants(const std::string& name) const {
        return only.empty() || std::find(only.begin(), only.end(), name) != only.end();
    }
};

constexpr std::size_t comparedSessions = 60;
constexpr std::size_t turn = 25; // sessions

struct Answered {
    Took took;
    Page page;
};

// One of what is measured, and what it has answered.
struct Contestant {
    std::string name;
    std::unique_ptr<KeySearch> search;
    std::vector<Answered> answers;                   // to all keys so far, in order
    std::unordered_map<std::string, Answered> known; // what a search that keeps nothing between keys need not be asked

    void type(const Session& session) {
        search->begin();
        for (const std::string& key : session.keys) {
            const auto at = known.find(key);
            if (at != known.end()) {
                answers.push_back(at->second);
                continue;
            }
            const Took took = search->type(key);
            answers.push_back({took, search->page()});
            if (search->isStateless()) {
                known.emplace(key, answers.back());
            }
        }
    }
};

// They take turns, some sessions each, so that whatever else the machine does meets all of them.
void typeAll(const std::vector<Session>& sessions, std::vector<Contestant>& contestants) {
    for (std::size_t from = 0; from < sessions.size(); from += turn) {
        const std::size_t to = std::min(from + turn, sessions.size());
        for (Contestant& contestant : contestants) {
            std::cerr << "  sessions " << from + 1 << " to " << to << " of " << sessions.size() << " on "
                      << contestant.name << " ...\n";
            for (std::size_t i = from; i < to; ++i) {
                contestant.type(sessions[i]);
            }
        }
    }
}

// Where a result goes on behind its page, which rows come first is each search's own matter: the library keeps the
// order of a session's first key.
bool isSameResult(Page one, Page other) {
    if (one.total != other.total || one.rows.size() != one.total) {
        return one.total == other.total;
    }
    const auto byRow = [](const Row& a, const Row& b) {
        return std::tie(a.name, a.number) < std::tie(b.name, b.number);
    };
    std::sort(one.rows.begin(), one.rows.end(), byRow);
    std::sort(other.rows.begin(), other.rows.end(), byRow);
    return one.rows == other.rows;
}

// Types the first sessions once more, each key twice: its second page is cut when every source has answered, and counts
// all rows. Gives the number of keys that another search answered differently; the first of them is told.
std::size_t differences(LivePhone& phone, const std::vector<Session>& sessions,
                        const std::vector<Contestant>& contestants) {
    std::size_t count = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i < sessions.size() && i < comparedSessions; ++i) {
        phone.begin();
        for (const std::string& key : sessions[i].keys) {
            phone.type(key);
            phone.type(key);
            const Page page = phone.page();
            for (const Contestant& other : contestants) {
                // The library's own first pages count the rows of the sources that were asked by then.
                if (other.search.get() != &phone && !isSameResult(page, other.answers[at].page) && ++count == 1) {
                    std::cerr << "session_bench: for \"" << key << "\", " << other.name << " finds "
                              << other.answers[at].page.total << " rows, the library " << page.total
                              << ", or other ones\n";
                }
            }
            ++at;
        }
    }
    return count;
}

Json json(const Summary& summary) {
    return {{"keys", summary.count},
            {"median", summary.median},
            {"percentile99", summary.percentile99},
            {"worst", summary.worst},
            {"total", summary.total}};
}

// By what was typed: all keys, those of each way, and the first digits, which match nearly everything.
Json groupsOf(const std::vector<Answered>& answers, const std::vector<Session>& sessions, Nanoseconds Took::*time) {
    std::map<std::string, std::vector<Nanoseconds>> groups;
    std::size_t at = 0;
    for (const Session& session : sessions) {
        const char* const way = session.way == Way::keypad ? "keypad" : session.way == Way::number ? "number" : "text";
        for (const std::string& key : session.keys) {
            const Nanoseconds value = answers[at++].took.*time;
            groups["all"].push_back(value);
            groups[way].push_back(value);
            if (session.way != Way::text && key.size() == 1) {
                groups["one digit"].push_back(value);
            }
        }
    }
    Json result;
    for (auto& [name, times] : groups) {
        result[name] = json(summaryOf(std::move(times)));
    }
    return result;
}

void print(const std::string& name, const Json& groups) {
    for (const auto& [group, times] : groups.items()) {
        std::printf("  %-9s %-10s %6zu keys %11.1f us median %11.1f us 99%% %11.1f us worst %9.3f s total\n",
                    name.c_str(), group.c_str(), times["keys"].get<std::size_t>(), times["median"].get<double>(),
                    times["percentile99"].get<double>(), times["worst"].get<double>(),
                    times["total"].get<double>() / 1e6);
    }
    std::fflush(stdout);
}

std::unique_ptr<KeySearch> makeSearch(const std::string& name, const Population& population) {
    if (name == "wideseek") {
        return std::make_unique<LivePhone>(population);
    }
    if (name == "floor") {
        return std::make_unique<ScanFloor>(population);
    }
    if (name == "plain") {
        return std::make_unique<PlainSearch>(population);
    }
    return std::make_unique<Fts5Search>(population);
}

// From the last key of a burst to its page, and from the same key to its page when it is typed alone.
Json measureBursts(LivePhone& phone, const Population& population) {
    std::vector<Nanoseconds> typed, typedAlone, erased, erasedAlone;
    for (const Burst& burst : makeBursts(population, bursts)) {
        phone.begin();
        typedAlone.push_back(phone.type(burst.typed.back()).page);
        phone.begin();
        typed.push_back(phone.typeBurst(burst.typed, burstGap));
        erased.push_back(phone.typeBurst(burst.erased, burstGap));
        phone.begin();
        erasedAlone.push_back(phone.type(burst.erased.back()).page);
    }
    return {{"typed", json(summaryOf(typed))},
            {"typed alone", json(summaryOf(typedAlone))},
            {"erased", json(summaryOf(erased))},
            {"erased alone", json(summaryOf(erasedAlone))}};
}

// What only the library has: a number of all rows, hand-overs, and work that goes on behind the page.
void addPhone(LivePhone& phone, const Population& population, const Contestant& contestant,
              const std::vector<Session>& sessions, Json& result) {
    result["empty request"] = json(summaryOf(phone.emptyRequests()));
    result["wideseek, all work"] = groupsOf(contestant.answers, sessions, &Took::work);
    print("wideseek", {{"empty", result["empty request"]}});
    print("all work", result["wideseek, all work"]);
    result["bursts"] = measureBursts(phone, population);
    print("bursts", result["bursts"]);
    phone.begin();
    phone.type(everybody);
    phone.type(everybody);
    result["rows"] = phone.page().total;
}

Json measureSessions(const Options& options, std::size_t contacts, std::size_t& wrong) {
    const Population population = makePopulation(contacts);
    const std::vector<Session> sessions = makeSessions(population, options.typed);
    std::printf("%zu contacts\n", contacts);
    std::cerr << contacts << " contacts\n";
    std::vector<Contestant> contestants;
    for (const char* const name : {"wideseek", "floor", "plain", "fts5"}) {
        if (options.wants(name)) {
            contestants.push_back({name, makeSearch(name, population), {}, {}});
        }
    }
    typeAll(sessions, contestants);
    Json result{{"contacts", contacts}};
    for (const Contestant& contestant : contestants) {
        result[contestant.name] = groupsOf(contestant.answers, sessions, &Took::page);
        print(contestant.name, result[contestant.name]);
        if (auto* const phone = dynamic_cast<LivePhone*>(contestant.search.get())) {
            addPhone(*phone, population, contestant, sessions, result);
            wrong += differences(*phone, sessions, contestants);
        }
    }
    return result;
}

Json measureCaller(const Population& population) {
    LivePhone phone(population);
    Json result;
    const auto add = [&result](const char* when, const LivePhone::CallerTimes& times) {
        result[when] = {{"hand over", json(summaryOf(times.handOver))},
                        {"reset", json(summaryOf(times.reset))},
                        {"detach", json(summaryOf(times.detach))}};
        print(when, result[when]);
    };
    std::printf("the caller's thread while a full search runs, and at rest\n");
    add("search", phone.callerDuringSearch(everybody, callerRounds));
    add("rest", phone.callerAtRest(everybody, callerRounds));
    phone.type(everybody);
    phone.type(everybody);
    result["rows"] = phone.page().total;
    return result;
}

Json memory(const Population& population) {
    const MemoryUse use = measureMemory(population);
    std::printf("memory with %zu rows\n"
                "  %.0f bytes per row held, %.2f times a row with its two nodes (%.0f); %.0f at the peak\n"
                "  allocations per row: %.2f by the module, %.2f by the sources\n"
                "  allocations in all: %.0f when every row is looked at and stays, %.0f for the page again\n",
                use.rows, use.bytesHeld, use.bytesHeld / use.bytesOfRow, use.bytesOfRow, use.bytesAtPeak,
                use.madePerRow, use.madeBySources, use.madeByNarrowing, use.madeByRepeat);
    return {{"rows", use.rows},
            {"bytes held", use.bytesHeld},
            {"bytes of row", use.bytesOfRow},
            {"bytes at peak", use.bytesAtPeak},
            {"allocations", use.madePerRow},
            {"allocations of sources", use.madeBySources},
            {"allocations narrowing", use.madeByNarrowing},
            {"allocations repeating", use.madeByRepeat}};
}

// What a person finds who types after a pause, the processors asleep.
Json measureAfterPauses(const Population& population) {
    LivePhone phone(population);
    for (std::size_t i = 0; i < pauses; ++i) {
        std::this_thread::sleep_for(pause);
        phone.begin();
    }
    Json result = json(summaryOf(phone.clearings()));
    print("after", {{"a pause", result}});
    return result;
}

int run(const Options& options) {
    std::size_t wrong = 0;
    Json result{{"typed", options.typed}, {"sizes", Json::array()}};
    if (options.wants("wideseek")) {
        result["empty request after a pause"] = measureAfterPauses(makePopulation(options.contacts.front()));
    }
    const AwakeProcessors awake;
    result["kept awake"] = awake.areKept();
    if (!awake.areKept()) {
        std::cerr << "session_bench: the processors cannot be kept awake (" << awake.problem()
                  << "); how long they take to wake is part of the times. Run it as root to leave it out.\n";
    }
    for (const std::size_t contacts : options.contacts) {
        result["sizes"].push_back(measureSessions(options, contacts, wrong));
    }
    if (options.wants("wideseek")) {
        const Population largest = makePopulation(options.contacts.back());
        std::cerr << "the caller's thread and the memory ...\n";
        result["caller"] = measureCaller(largest);
        result["memory"] = memory(largest);
    }
    if (!options.jsonFile.empty()) {
        std::ofstream file(options.jsonFile);
        if (!(file << result.dump(2) << '\n')) {
            throw std::runtime_error(options.jsonFile + " could not be written");
        }
    }
    if (wrong > 0) {
        std::cerr << "session_bench: " << wrong << " pages differ; the times compare different work\n";
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Measures whole typing sessions on the live phone");
    app.add_option("--contacts", options.contacts, "How many contacts; several numbers measure one after another")
        ->check(CLI::Range(50, 1'000'000));
    app.add_option("--typed", options.typed, "How many of them are typed, each in three ways")
        ->check(CLI::Range(1, 100'000));
    app.add_option("--only", options.only, "Only these of wideseek, floor, plain and fts5")
        ->check(CLI::IsMember({"wideseek", "floor", "plain", "fts5"}));
    app.add_option("--json", options.jsonFile, "Writes the numbers to this file; times in microseconds");
    CLI11_PARSE(app, argc, argv);
    try {
        return run(options);
    } catch (const std::exception& reason) {
        std::cerr << "session_bench: " << reason.what() << '\n';
        return 1;
    }
}
