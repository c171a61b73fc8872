#include "tests/support/Oracle.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

namespace test {

namespace {

constexpr long long everything = 0xffffff;

bool isDigits(const std::string& key) {
    return !key.empty() && key.find_first_not_of("0123456789") == std::string::npos;
}

bool contains(const std::string& text, const std::string& key) {
    return text.find(key) != std::string::npos;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::string without(std::string text, const std::string& dropped) {
    std::erase_if(text, [&](char letter) { return contains(dropped, {letter}); });
    return text;
}

std::string converted(const std::string& typed) {
    const std::string digits = without(typed, " -+");
    if (isDigits(digits)) {
        return digits;
    }
    const std::size_t first = typed.find_first_not_of(' ');
    return first == std::string::npos ? "" : lower(typed.substr(first, typed.find_last_not_of(' ') - first + 1));
}

std::string keypad(const std::string& name) {
    std::string digits;
    for (const char letter : lower(without(name, " "))) {
        digits += letter < 'a' ? letter : "22233344455566677778889999"[letter - 'a'];
    }
    return digits;
}

bool matches(const Contact& contact, const std::string& key) {
    if (!isDigits(key)) {
        const std::string name = without(lower(contact.name), " -");
        std::istringstream words(key);
        return std::all_of(std::istream_iterator<std::string>(words), {},
                           [&](const std::string& word) { return contains(name, without(word, "-")); });
    }
    return contains(keypad(contact.name), key) ||
           std::any_of(contact.numbers.begin(), contact.numbers.end(),
                       [&](const std::string& number) { return contains(without(number, "+"), key); });
}

std::string pageText(const std::string& key, int from, int count, long long total, const std::string& rows) {
    return key + " " + std::to_string(from) + "+" + std::to_string(count) + " of " + std::to_string(total) + ":" + rows;
}

std::string rowText(const std::string& name, const std::string& number, const std::string& extra) {
    return " " + name + " " + number + (extra.empty() ? "," : " (" + extra + "),");
}

} // namespace

std::string Oracle::textOf(const WideseekListData& page) {
    std::string rows;
    for (const WideseekItemData& row : page.listItem) {
        rows += rowText(row.strName, row.strNumber, row.strExtra2);
    }
    return pageText(page.strKey, page.iFromIndex, page.iSearchCount, page.iTotalCount, rows);
}

void Oracle::startAnew() {
    stop();
    m_queued.clear();
    sent.clear();
    asked.clear();
    start();
}

// ---- what callers do ----

void Oracle::start() {
    m.list = m.running ? m.list : file;
    m.running = true;
}

void Oracle::stop() {
    m_life += m.running ? 1 : 0;
    m = Search();
}

void Oracle::handOver(const Request& request) {
    start();
    m.next = request;
    m_queued.push_back(m_life);
}

void Oracle::reset() {
    start();
    m.heldKey.clear();
    m.fresh = false;
}

void Oracle::reload() {
    if (m.running) {
        reset();
        m.list = file;
    }
}

void Oracle::detach(int screen) {
    start();
    for (int* kept : {&m.late, &m.receiver, m.next ? &m.next->screen : &m.receiver}) {
        *kept = *kept == screen ? nobody : *kept;
    }
}

bool Oracle::isAlive(int life) const {
    return life == m_life || std::find(m_queued.begin(), m_queued.end(), life) != m_queued.end();
}

// ---- what messages do ----

void Oracle::work() {
    const int life = m_queued.front();
    m_queued.pop_front();
    if (life != m_life || (!m.next && m.receiver == nobody)) {
        return;
    }
    if (m.next) {
        m.work = *std::exchange(m.next, std::nullopt);
        m.key = converted(m.work.key);
        m.receiver = m.work.screen;
    }
    const std::string key = m.key;
    try {
        if (key.empty()) {
            return offerRecentCalls();
        }
        m.late = m.receiver == nobody ? m.late : m.receiver;
        if (key == m.heldKey) {
            cut(key, m.work.key);
        } else if (!m.heldKey.empty() && key.starts_with(m.heldKey)) {
            narrow(key);
        } else {
            askAll(key);
        }
    } catch (const Stopped&) {
        return;
    }
}

void Oracle::expire() {
    m.timer.reset();
    std::stable_partition(m.buckets.begin(), m.buckets.end(),
                          [](const Bucket& bucket) { return bucket.state != State::searching; });
    cut(m.key, m.work.key);
}

void Oracle::answer(const std::string& key, const std::vector<Contact>& rows, bool succeeded) {
    Bucket* bucket = find(ldapId);
    if (!bucket) {
        return;
    }
    if (!succeeded || converted(key) != m.key) {
        bucket->state = State::failed;
        return;
    }
    for (const Contact& row : rows) {
        for (const std::string& number : row.numbers) {
            add(*bucket, {row.name, {number}});
        }
    }
    bucket->state = State::done;
    m.receiver = m.next ? m.receiver : m.late;
    check(key, m.key);
}

// ---- searching ----

void Oracle::ask(const std::string& name, const std::string& key) {
    const int life = m_life;
    meanwhile();
    asked.push_back(name + " " + key);
    meanwhile();
    if (life != m_life) {
        throw Stopped();
    }
}

void Oracle::askAll(const std::string& key) {
    m.heldKey = key;
    m.fresh = true;
    m.armed = false;
    m.buckets.clear();
    const std::vector<std::string> list = m.list;
    for (const std::string& id : list) {
        if (!id.empty()) {
            m.buckets.push_back({id, State::waiting, {}});
        }
    }
    for (const std::string& id : list) {
        const auto source = sources.find(id);
        if (id == ldapId) {
            askLdap(key);
        } else if (source != sources.end()) {
            const auto& [name, scripted] = source->second;
            ask(name, key);
            for (const Contact& contact : scripted->contacts) {
                if (matches(contact, key)) {
                    add(*find(id), contact);
                }
            }
            find(id)->state = scripted->fails ? State::failed : State::done;
        }
        check(key, m.work.key);
    }
    if (list.empty()) {
        check(key, m.work.key);
    }
}

void Oracle::askLdap(const std::string& key) {
    if (Bucket* bucket = find(ldapId)) {
        bucket->rows.clear();
        bucket->state = State::searching;
        ask("LDAP", key);
    }
}

void Oracle::narrow(const std::string& key) {
    askLdap(key);
    if (!mayCut()) {
        m.heldKey = find(ldapId) ? "" : m.heldKey;
        return;
    }
    for (Bucket& bucket : m.buckets) {
        if (bucket.state == State::done) {
            std::erase_if(bucket.rows, [&](const Contact& row) { return !matches(row, key); });
        }
    }
    cut(key, m.work.key);
}

void Oracle::offerRecentCalls() {
    ask("local directory", "");
    ask("call log", "");
    m.buckets.clear();
    std::string rows;
    int total = 0;
    if (recentCalls) {
        m.work.count = 10;
        if (m.work.from >= 0) {
            ask("call log", "");
            total = static_cast<int>(calls.size());
        }
        for (long long i = m.work.from; i >= 0 && i < m.work.from + 10LL && i < total; ++i) {
            const Contact& call = calls[static_cast<std::size_t>(i)];
            if (call.name.empty() && call.numbers[0].empty()) {
                continue;
            }
            rows += rowText(call.name.empty() ? call.numbers[0] : call.name, call.numbers[0], call.extra);
        }
    }
    m.heldKey.clear();
    send("", total, rows);
}

// ---- pages ----

void Oracle::check(const std::string& key, const std::string& shownKey) {
    long long rows = 0;
    bool waiting = false;
    bool searching = false;
    for (const Bucket& bucket : m.buckets) {
        searching = searching || bucket.state == State::searching;
        waiting = waiting || (!searching && bucket.state == State::waiting);
        rows += searching ? 0 : std::ssize(bucket.rows);
    }
    const long long wanted = static_cast<long long>(m.work.from) + m.work.count;
    if (m.receiver == nobody) {
        return;
    }
    if ((!waiting && !searching) || (wanted == 0 ? everything : wanted) <= rows) {
        cut(key, shownKey);
    } else if (searching && !std::exchange(m.armed, true)) {
        m.timer = now + 100ms;
    }
}

void Oracle::cut(const std::string& key, const std::string& shownKey) {
    if (key != m.key || !mayCut()) {
        return;
    }
    std::string rows;
    long long total = 0;
    const long long end = m.work.count == 0 ? everything : static_cast<long long>(m.work.from) + m.work.count;
    for (const Bucket& bucket : m.buckets) {
        for (const Contact& row : bucket.state == State::done ? bucket.rows : std::vector<Contact>()) {
            const bool shown = total >= m.work.from && total < end;
            rows += shown ? rowText(row.name, row.numbers[0], row.extra) : "";
            ++total;
        }
    }
    m.heldKey = m.fresh ? key : m.heldKey;
    send(shownKey, total, rows);
}

void Oracle::send(const std::string& shownKey, long long total, const std::string& rows) {
    if (mayCut() && m.receiver != nobody) {
        sent.emplace_back(std::exchange(m.receiver, nobody),
                          pageText(shownKey, m.work.from, m.work.count, total, rows));
    }
}

// One row per number; its other numbers are matched, too.
void Oracle::add(Bucket& bucket, const Contact& contact) {
    for (std::size_t i = 0; i < contact.numbers.size(); ++i) {
        Contact row = contact;
        std::swap(row.numbers[0], row.numbers[i]);
        const bool held = std::any_of(m.buckets.begin(), m.buckets.end(), [&](const Bucket& other) {
            return std::any_of(other.rows.begin(), other.rows.end(), [&](const Contact& each) {
                return each.name == row.name && each.numbers[0] == row.numbers[0];
            });
        });
        if (!held && !row.numbers[0].empty()) {
            bucket.rows.push_back(row);
        }
    }
}

Oracle::Bucket* Oracle::find(const std::string& id) {
    const auto at = std::find_if(m.buckets.begin(), m.buckets.end(), [&](const Bucket& each) { return each.id == id; });
    return at == m.buckets.end() ? nullptr : &*at;
}

} // namespace test
