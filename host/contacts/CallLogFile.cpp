#include "host/contacts/CallLogFile.h"

#include "host/contacts/ContactFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <utility>

namespace host {

namespace {

enum Column : std::size_t { timeColumn, directionColumn, nameColumn, numberColumn, extraColumn };

constexpr std::array<CsvColumn, 5> columns{{{.name = "time", .needed = true},
                                            {.name = "direction", .needed = true},
                                            {.name = "name"},
                                            {.name = "number"},
                                            {.name = "extra"}}};

std::optional<CallDirection> directionOf(std::string_view text) {
    if (text == "out") {
        return CallDirection::out;
    }
    if (text == "in") {
        return CallDirection::in;
    }
    return text == "missed" ? std::optional(CallDirection::missed) : std::nullopt;
}

// Fixed width and no zone, so that times compare as text.
bool isTime(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00";
    const auto fits = [](char byte, char wanted) {
        return wanted == '0' ? byte >= '0' && byte <= '9' : byte == wanted;
    };
    if (text.size() != form.size() || !std::equal(text.begin(), text.end(), form.begin(), fits)) {
        return false;
    }
    const auto number = [&](std::size_t at, std::size_t digits) {
        unsigned value = 0;
        for (const char digit : text.substr(at, digits)) {
            value = value * 10 + static_cast<unsigned>(digit - '0');
        }
        return value;
    };
    const std::chrono::year_month_day day(std::chrono::year(static_cast<int>(number(0, 4))),
                                          std::chrono::month(number(5, 2)), std::chrono::day(number(8, 2)));
    return day.ok() && number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
}

ReloadedFile<std::vector<LoggedCall>>::Made readCalls(TextWindow text, const std::string& file) {
    std::vector<LoggedCall> calls;
    CsvReader reader(std::move(text), file, columns);
    while (reader.next()) {
        const std::string_view time = reader.field(timeColumn);
        const auto direction = directionOf(reader.field(directionColumn));
        if (!isTime(time)) {
            reader.addProblem(shown(time) + " is not a time - write it as 2026-11-20T09:12:33; line skipped");
        } else if (!direction) {
            reader.addProblem(shown(reader.field(directionColumn)) +
                              " is not a direction - write out, in or missed; line skipped");
        } else if (reader.field(nameColumn).empty() && reader.field(numberColumn).empty()) {
            reader.addProblem("has neither a name nor a number - add one; line skipped");
        } else {
            calls.push_back({std::string(time), *direction, std::string(reader.field(nameColumn)),
                             readNumber(reader, reader.field(numberColumn)), std::string(reader.field(extraColumn))});
        }
    }
    if (!reader.error().empty()) {
        return {nullptr, reader.problems(), reader.error()};
    }
    return {std::make_shared<const std::vector<LoggedCall>>(std::move(calls)), reader.problems(), {}};
}

ContactTable distinctPeople(const std::vector<LoggedCall>& newestFirst) {
    ContactTable people;
    std::set<std::pair<std::string_view, std::string_view>> seen;
    for (const LoggedCall& call : newestFirst) {
        if (seen.emplace(call.name, call.number).second) {
            people.add({call.name, call.number, {}, {}, call.extra});
        }
    }
    return people;
}

const char* shown(CallDirection direction) {
    switch (direction) {
    case CallDirection::out:
        return "made";
    case CallDirection::in:
        return "taken";
    case CallDirection::missed:
        return "missed";
    }
    return "";
}

// Of calls in the file's order; null when there is none.
const LoggedCall* newestOf(const std::vector<LoggedCall>& calls, const NameAndNumber& row) {
    const LoggedCall* newest = nullptr;
    for (const LoggedCall& call : calls) {
        if (call.name == row.name && call.number == row.number && (!newest || call.time >= newest->time)) {
            newest = &call;
        }
    }
    return newest;
}

// "2026-11-20T09:12:33" as people write it.
std::string shownTime(std::string time) {
    std::replace(time.begin(), time.end(), 'T', ' ');
    return time;
}

} // namespace

CallLogFile::CallLogFile(std::filesystem::path path, ProblemSink problemSink)
    : m_file(std::move(path), std::move(problemSink), readCalls) {
}

bool CallLogFile::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    const auto log = current(error);
    if (!log || !log->fromFile) {
        return false;
    }
    if (!key.empty()) {
        log->people.index().appendMatches(key, hits);
    }
    return true;
}

int CallLogFile::outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) {
    if (from < 0 || count < 0) {
        error = "the call log was asked for calls " + std::to_string(from) + " and " + std::to_string(count) +
                " further ones; neither may be negative";
        return -1;
    }
    const auto log = current(error);
    if (!log) {
        return -1;
    }
    error.clear(); // of the file, when there are added calls to offer
    const std::size_t begin = std::min(static_cast<std::size_t>(from), log->outgoing.size());
    const std::size_t end = begin + std::min(static_cast<std::size_t>(count), log->outgoing.size() - begin);
    for (std::size_t i = begin; i < end; ++i) {
        const LoggedCall& call = log->outgoing[i];
        auto item = std::make_unique<GeneralDirItemData>(GeneralDirItemData{call.name, call.number, call.extra});
        calls.PushBack(item.release()); // which owns it, whether or not there is memory for it
    }
    return static_cast<int>(std::min<std::size_t>(log->outgoing.size(), std::numeric_limits<int>::max()));
}

std::vector<bool> CallLogFile::holds(std::span<const NameAndNumber> rows) const {
    const auto log = latest();
    return log ? log->people.holds(rows) : std::vector<bool>(rows.size());
}

std::size_t CallLogFile::size() const {
    const auto log = latest();
    return log ? log->people.index().size() : 0;
}

std::optional<KnownContact> CallLogFile::find(const NameAndNumber& row) const {
    const auto log = latest();
    const auto position = log ? log->people.find({&row, 1}).front() : std::nullopt;
    if (!position) {
        return std::nullopt;
    }
    KnownContact known = knownContactOf(log->people.at(*position));
    if (const LoggedCall* newest = log->fromFile ? newestOf(*log->fromFile, row) : nullptr) {
        known.facts.push_back({"Last call", std::string(shown(newest->direction)) + " " + shownTime(newest->time)});
    }
    return known;
}

void CallLogFile::add(const GeneralDirItemData& call) {
    const std::lock_guard lock(m_mutex);
    m_added.insert(m_added.begin(), LoggedCall{{}, CallDirection::out, call.strName, call.strNumber, call.strExtra});
}

std::shared_ptr<const CallLogFile::Log> CallLogFile::latest() const {
    const std::lock_guard lock(m_mutex);
    return m_log;
}

std::shared_ptr<const CallLogFile::Log> CallLogFile::current(std::string& error) {
    const auto fromFile = m_file.current(error);
    auto log = std::make_shared<Log>();
    Calls calls;
    {
        const std::lock_guard lock(m_mutex);
        if (!fromFile && m_added.empty()) {
            return nullptr;
        }
        if (m_log && m_log->fromFile == fromFile && m_log->added == m_added.size()) {
            return m_log;
        }
        log->fromFile = fromFile;
        log->added = m_added.size();
        calls = m_added;
    }
    if (fromFile) {
        const auto begin = calls.insert(calls.end(), fromFile->rbegin(), fromFile->rend());
        std::stable_sort(begin, calls.end(), [](const auto& a, const auto& b) { return a.time > b.time; });
    }
    log->people = distinctPeople(calls);
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(log->outgoing),
                 [](const LoggedCall& call) { return call.direction == CallDirection::out; });
    const std::lock_guard lock(m_mutex);
    m_log = log;
    return log;
}

} // namespace host
