#include "host/remote/RemoteDirectory.h"

#include "host/files/FileText.h"
#include "host/sources/Failure.h"

#include <ctime>
#include <utility>

namespace host {

namespace {

using Kind = RemoteOutcome::Kind;

// Thrown where reading contacts takes long, once nobody wants them any more.
struct Stopped {};

std::string timeText(RemoteState::Time time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &parts)};
}

// Coarse, so that the same thing is not told anew at every key.
std::string ageText(std::chrono::system_clock::duration age) {
    const auto hours = std::chrono::duration_cast<std::chrono::hours>(age).count();
    if (hours < 1) {
        return "less than an hour old";
    }
    const bool days = hours >= 48;
    const auto count = days ? hours / 24 : hours;
    return std::to_string(count) + (days ? " day" : " hour") + (count == 1 ? "" : "s") + " old";
}

} // namespace

RemoteDirectory::RemoteDirectory(RemoteOptions options, std::filesystem::path copyFile,
                                 std::unique_ptr<HttpTransport> transport, Surroundings surroundings)
    : m_options(std::move(options)), m_source(m_options.user + " " + m_options.url), m_copyFile(std::move(copyFile)),
      m_transport(std::move(transport)), m_surroundings([&] {
          if (!surroundings.clock) {
              surroundings.clock = [] { return std::chrono::system_clock::now(); };
          }
          return std::move(surroundings);
      }()),
      m_plan(m_options.refresh, m_surroundings.spread) {
}

bool RemoteDirectory::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    loadOnce();
    const auto contacts = table();
    const RemoteState now = state();
    if (!contacts) {
        error = now.problem.empty() ? "the contacts are being fetched for the first time; search again in a moment"
                                    : "there are no contacts yet: " + now.problem;
        return false;
    }
    contacts->index().appendMatches(key, hits);
    error = noteOn(now);
    return true;
}

std::vector<bool> RemoteDirectory::holds(std::span<const NameAndNumber> rows) const {
    const auto contacts = table();
    return contacts ? contacts->holds(rows) : std::vector<bool>(rows.size());
}

std::optional<KnownContact> RemoteDirectory::find(const NameAndNumber& row) const {
    const auto contacts = table();
    return contacts ? contacts->known(row) : std::nullopt;
}

RemoteState RemoteDirectory::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

std::shared_ptr<const ContactTable> RemoteDirectory::table() const {
    const std::lock_guard lock(m_mutex);
    return m_table;
}

// What is to be known of an answer: empty while the copy is as new as it should be.
std::string RemoteDirectory::noteOn(const RemoteState& now) const {
    const auto age = m_surroundings.clock() - now.confirmed;
    if (now.problem.empty() && age <= 2 * m_options.refresh) {
        return {};
    }
    const std::string copy = "answers from its copy of " + timeText(now.confirmed) + ", " + ageText(age);
    return now.problem.empty() ? copy + ", while the server is asked for what is new; search again in a moment"
                               : copy + ": " + now.problem;
}

void RemoteDirectory::stop() {
    m_stopped = true;
    m_transport->stop();
}

void RemoteDirectory::loadOnce() {
    std::call_once(m_loaded, [this] {
        std::string ignored;
        const auto stamp = stampOf(m_copyFile, ignored);
        auto copy = stamp ? loadRemoteCopy(m_copyFile, m_source) : std::nullopt;
        RemoteContacts contacts = copy ? read(*copy) : RemoteContacts();
        tell(contacts.problems);
        if (contacts.table) {
            m_copy = *std::move(copy);
            publish(std::move(contacts.table), RemoteState::Time(std::chrono::seconds(stamp->seconds)));
            return;
        }
        const std::lock_guard lock(m_mutex);
        m_state.isFirstFetch = true;
    });
}

// Throws Stopped.
RemoteContacts RemoteDirectory::read(const RemoteCopy& copy) const {
    std::string ignored;
    const auto address = parseWebAddress(m_options.url, ignored);
    return readRemoteContacts(copy, address.value_or(WebAddress()), [this] {
        if (m_stopped) {
            throw Stopped();
        }
    });
}

RemoteDirectory::TimePoint RemoteDirectory::work(TimePoint now) {
    try {
        loadOnce();
        return goOn(now);
    } catch (const Stopped&) {
        return now;
    } catch (...) {
        m_refresh.reset();
        m_plan.failed(now, std::chrono::seconds::zero());
        ended(reasonOfCurrentException());
        return m_plan.due();
    }
}

RemoteDirectory::TimePoint RemoteDirectory::goOn(TimePoint now) {
    if (!m_refresh && now < m_plan.due()) {
        return m_plan.due();
    }
    if (!m_refresh) {
        m_refresh = std::make_unique<RemoteConversation>(m_options, m_copy);
    }
    if (const HttpRequest* const request = m_refresh->next()) {
        HttpResponse response = m_transport->exchange(*request);
        if (m_stopped) {
            return now;
        }
        m_refresh->take(std::move(response));
    }
    if (m_refresh->next() != nullptr) {
        return now;
    }
    finish(now);
    return m_plan.due();
}

void RemoteDirectory::finish(TimePoint now) {
    const auto refresh = std::exchange(m_refresh, nullptr);
    RemoteOutcome outcome = refresh->outcome();
    if (outcome.kind == Kind::changed || outcome.kind == Kind::unchanged) {
        if (take(refresh->takeCopy(), outcome.kind == Kind::changed, outcome.problem)) {
            m_plan.succeeded(now);
            ended({});
            return;
        }
        outcome.kind = Kind::gone; // what is there now is something else
    }
    if (outcome.kind == Kind::gone) {
        m_copy.kind = RemoteCopy::Kind::unknown;
        m_copy.syncToken.clear();
    }
    if (outcome.kind == Kind::refused) {
        m_plan.refused(now);
    } else {
        m_plan.failed(now, outcome.retryAfter);
    }
    ended(outcome.problem);
}

// What a refresh has brought, or has found to be still so. False, and what to do: it holds no contacts.
bool RemoteDirectory::take(RemoteCopy copy, bool changed, std::string& problem) {
    if (!changed && table()) {
        m_copy = std::move(copy);
        std::error_code ignored; // the next start takes the copy for older than it is
        std::filesystem::last_write_time(m_copyFile, std::filesystem::file_time_type::clock::now(), ignored);
        publish(table(), m_surroundings.clock());
        return true;
    }
    RemoteContacts contacts = read(copy);
    if (!contacts.table) {
        problem = contacts.error;
        return false;
    }
    tell(contacts.problems);
    m_copy = std::move(copy);
    const bool isFirst = !table();
    publish(std::move(contacts.table), m_surroundings.clock());
    if (isFirst && m_surroundings.firstContacts) {
        m_surroundings.firstContacts();
    }
    std::string unsaved;
    if (!saveRemoteCopy(m_copyFile, m_source, m_copy, unsaved)) {
        tell({unsaved});
    }
    return true;
}

void RemoteDirectory::publish(std::shared_ptr<const ContactTable> table, RemoteState::Time confirmed) {
    const std::lock_guard lock(m_mutex);
    m_state.hasContacts = true;
    m_state.contacts = table->index().size();
    m_state.confirmed = confirmed;
    m_table.swap(table);
}

void RemoteDirectory::tell(const std::vector<std::string>& problems) const {
    for (const std::string& problem : problems) {
        if (m_surroundings.problem) {
            m_surroundings.problem(problem);
        }
    }
}

// A refresh is over, well when problem is empty.
void RemoteDirectory::ended(const std::string& problem) {
    std::size_t contacts = 0;
    {
        const std::lock_guard lock(m_mutex);
        ++m_state.refreshes;
        m_state.problem = problem;
        contacts = m_state.contacts;
    }
    if (m_surroundings.log) {
        m_surroundings.log(problem.empty() ? "the server has " + std::to_string(contacts) + " contacts" : problem);
    }
}

} // namespace host
