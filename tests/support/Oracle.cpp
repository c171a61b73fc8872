#include "tests/support/Oracle.h"

#include <algorithm>
#include <cctype>

namespace test {

namespace {

bool isDigits(const std::string& key) {
    return !key.empty() && key.find_first_not_of("0123456789") == std::string::npos;
}

std::string lower(std::string text) {
    for (char& letter : text) {
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    return text;
}

std::string without(std::string text, const std::string& dropped) {
    std::erase_if(text, [&](char letter) { return dropped.find(letter) != std::string::npos; });
    return text;
}

std::string keypad(const std::string& name) {
    std::string digits;
    for (const char letter : lower(name)) {
        if (letter >= 'a' && letter <= 'z') {
            digits += "22233344455566677778889999"[letter - 'a'];
        } else if (isDigits({letter})) {
            digits += letter;
        }
    }
    return digits;
}

bool matches(const Contact& contact, const std::string& key) {
    if (!isDigits(key)) {
        return lower(contact.name).find(key) != std::string::npos;
    }
    return keypad(contact.name).find(key) != std::string::npos ||
           std::any_of(contact.numbers.begin(), contact.numbers.end(),
                       [&](const std::string& number) { return without(number, "+").find(key) != std::string::npos; });
}

std::string joined(const std::string& key, int from, int count, int total, const std::vector<std::string>& rows) {
    std::string text =
        key + " " + std::to_string(from) + "+" + std::to_string(count) + " of " + std::to_string(total) + ":";
    for (const std::string& row : rows) {
        text += " " + row + ",";
    }
    return text;
}

std::string rowText(const std::string& name, const std::string& number, const std::string& extra) {
    return name + " " + number + (extra.empty() ? "" : " (" + extra + ")");
}

} // namespace

std::string Oracle::converted(const std::string& typed) {
    const std::string digits = without(typed, " -+");
    if (isDigits(digits)) {
        return digits;
    }
    const std::size_t first = typed.find_first_not_of(' ');
    return first == std::string::npos ? "" : lower(typed.substr(first, typed.find_last_not_of(' ') - first + 1));
}

std::string Oracle::textOf(const WideseekListData& page) {
    std::vector<std::string> rows;
    for (const WideseekItemData& row : page.listItem) {
        rows.push_back(rowText(row.strName, row.strNumber, row.strExtra2));
    }
    return joined(page.strKey, page.iFromIndex, page.iSearchCount, page.iTotalCount, rows);
}

// ---- what callers do ----

void Oracle::start() {
    if (!m_running) {
        m_running = true;
        m_list = file;
    }
}

void Oracle::stop() {
    m_life += m_running ? 1 : 0;
    m_running = m_armed = m_fresh = false;
    m_next.reset();
    m_timer.reset();
    m_buckets.clear();
    m_key.clear();
    m_heldKey.clear();
    m_receiver = m_late = nobody;
}

void Oracle::handOver(const Request& request) {
    start();
    m_next = request;
    m_queued.push_back(m_life);
}

void Oracle::reset() {
    start();
    m_heldKey.clear();
    m_fresh = false;
}

void Oracle::reload() {
    if (m_running) {
        reset();
        m_list = file;
    }
}

void Oracle::detach(int screen) {
    start();
    m_late = m_late == screen || m_receiver == screen ? nobody : m_late;
    m_receiver = m_receiver == screen ? nobody : m_receiver;
    if (m_next && m_next->screen == screen) {
        m_next->screen = gone;
    }
}

bool Oracle::isAlive(int life) const {
    return life == m_life || std::find(m_queued.begin(), m_queued.end(), life) != m_queued.end();
}

// ---- what messages do ----

void Oracle::work() {
    const int life = m_queued.front();
    m_queued.pop_front();
    if (life != m_life || (!m_next && m_receiver == nobody)) {
        return;
    }
    if (m_next) {
        m_work = *m_next;
        m_key = converted(m_work.key);
        m_receiver = std::max(m_work.screen, nobody);
        m_late = m_work.screen == gone ? nobody : m_late;
        m_next.reset();
    }
    try {
        const std::string key = m_key;
        if (key.empty()) {
            offerRecentCalls();
            return;
        }
        m_late = m_receiver == nobody ? m_late : m_receiver;
        if (key == m_heldKey) {
            cut(key, m_work.key);
        } else if (!m_heldKey.empty() && key.starts_with(m_heldKey)) {
            narrow(key);
        } else {
            askAll(key);
        }
    } catch (const Stopped&) {
        return;
    }
}

void Oracle::expire() {
    m_timer.reset();
    std::stable_partition(m_buckets.begin(), m_buckets.end(),
                          [](const Bucket& bucket) { return bucket.state != State::searching; });
    cut(m_key, m_work.key);
}

void Oracle::answer(const std::string& key, const std::vector<Contact>& rows, bool succeeded) {
    Bucket* bucket = find("ldap_search");
    if (!bucket) {
        return;
    }
    if (!succeeded || converted(key) != m_key) {
        bucket->state = State::failed;
        return;
    }
    for (const Contact& row : rows) {
        for (const std::string& number : row.numbers) {
            add(*bucket, {row.name, {number}});
        }
    }
    bucket->state = State::done;
    if (isCurrent()) {
        m_receiver = m_late;
    }
    check(key, m_key);
}

// ---- searching ----

void Oracle::ask(const std::string& name, const std::string& key) {
    const int life = m_life;
    const auto letOthersIn = [&] {
        if (meanwhile) {
            meanwhile();
        }
    };
    letOthersIn();
    asked.push_back(name + " " + key);
    letOthersIn();
    if (life != m_life) {
        throw Stopped();
    }
}

void Oracle::askAll(const std::string& key) {
    m_heldKey = key;
    m_fresh = true;
    m_armed = false;
    m_buckets.clear();
    const std::vector<std::string> list = m_list;
    for (const std::string& id : list) {
        if (!id.empty()) {
            m_buckets.push_back({id, State::waiting, {}});
        }
    }
    for (const std::string& id : list) {
        const auto source = sources.find(id);
        if (id == "ldap_search") {
            askLdap(key);
        } else if (source != sources.end()) {
            find(id)->state = State::searching;
            ask(source->second.name, key);
            for (const Contact& contact : *source->second.contacts) {
                if (matches(contact, key)) {
                    add(*find(id), contact);
                }
            }
            find(id)->state = *source->second.fails ? State::failed : State::done;
        }
        check(key, m_work.key);
    }
    if (list.empty()) {
        check(key, m_work.key);
    }
}

void Oracle::askLdap(const std::string& key) {
    if (Bucket* bucket = find("ldap_search")) {
        bucket->rows.clear();
        bucket->state = State::searching;
        ask("LDAP", key);
    }
}

void Oracle::narrow(const std::string& key) {
    askLdap(key);
    if (m_work.from < 0 || m_work.count < 0 || !isCurrent()) {
        m_heldKey.clear();
        return;
    }
    for (Bucket& bucket : m_buckets) {
        if (bucket.state == State::done) {
            std::erase_if(bucket.rows, [&](const Contact& row) { return !matches(row, key); });
        }
    }
    cut(key, m_work.key);
}

void Oracle::offerRecentCalls() {
    ask("local directory", "");
    ask("call log", "");
    m_buckets.clear();
    std::vector<std::string> rows;
    int total = 0;
    if (recentCalls) {
        m_work.count = 10;
        if (m_work.from >= 0) {
            ask("call log", "");
            total = static_cast<int>(calls.size());
        }
        for (long long i = m_work.from; i >= 0 && i < m_work.from + 10LL && i < total; ++i) {
            const Contact& call = calls[static_cast<std::size_t>(i)];
            rows.push_back(rowText(call.name.empty() ? call.numbers[0] : call.name, call.numbers[0], call.extra));
        }
    }
    m_heldKey.clear();
    send("", total, rows);
}

// ---- pages ----

void Oracle::check(const std::string& key, const std::string& shownKey) {
    if (m_receiver == nobody) {
        return;
    }
    long long rows = 0;
    bool waiting = false;
    bool searching = false;
    for (const Bucket& bucket : m_buckets) {
        searching = searching || bucket.state == State::searching;
        if (!searching) {
            waiting = waiting || bucket.state == State::waiting;
            rows += static_cast<long long>(bucket.rows.size());
        }
    }
    const long long wanted = static_cast<long long>(m_work.from) + m_work.count;
    if ((!waiting && !searching) || (wanted == 0 ? 0xffffff : wanted) <= rows) {
        cut(key, shownKey);
    } else if (searching && !m_armed) {
        m_armed = true;
        m_timer = now + 100ms;
    }
}

void Oracle::cut(const std::string& key, const std::string& shownKey) {
    if (m_work.from < 0 || m_work.count < 0 || key != m_key || !isCurrent()) {
        return;
    }
    std::vector<std::string> rows;
    long long total = 0;
    const long long end = m_work.count == 0 ? 0xffffff : static_cast<long long>(m_work.from) + m_work.count;
    for (const Bucket& bucket : m_buckets) {
        for (const Contact& row : bucket.rows) {
            if (bucket.state == State::done) {
                if (total >= m_work.from && total < end) {
                    rows.push_back(rowText(row.name, row.numbers[0], row.extra));
                }
                ++total;
            }
        }
    }
    if (m_fresh) {
        m_heldKey = key;
    }
    send(shownKey, static_cast<int>(total), rows);
}

void Oracle::send(const std::string& shownKey, int total, const std::vector<std::string>& rows) {
    if (isCurrent() && m_receiver != nobody && m_work.from >= 0 && m_work.count >= 0) {
        sent.push_back({m_receiver, joined(shownKey, m_work.from, m_work.count, total, rows)});
        m_receiver = nobody;
    }
}

// One row per number; its other numbers are matched, too.
void Oracle::add(Bucket& bucket, const Contact& contact) {
    for (std::size_t i = 0; i < contact.numbers.size(); ++i) {
        Contact row = contact;
        std::swap(row.numbers[0], row.numbers[i]);
        const auto same = [&](const Contact& other) {
            return other.name == row.name && other.numbers[0] == row.numbers[0];
        };
        const bool held = std::any_of(m_buckets.begin(), m_buckets.end(), [&](const Bucket& other) {
            return std::any_of(other.rows.begin(), other.rows.end(), same);
        });
        if (!held && !row.numbers[0].empty()) {
            bucket.rows.push_back(row);
        }
    }
}

Oracle::Bucket* Oracle::find(const std::string& id) {
    const auto at =
        std::find_if(m_buckets.begin(), m_buckets.end(), [&](const Bucket& bucket) { return bucket.id == id; });
    return at == m_buckets.end() ? nullptr : &*at;
}

} // namespace test
