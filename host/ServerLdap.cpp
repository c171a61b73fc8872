#include "host/ServerLdap.h"

#include "host/LdapConnection.h"
#include "host/LdapFilter.h"
#include "host/LdapPeople.h"
#include "platform/CommonAPI.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>

namespace host {

namespace {

struct Job {
    std::uint64_t id = 0;
    LdapQuery query;
    LdapDirectory::Done done;
    TimePoint deadline{};
};

// Thrown on the worker thread when nobody waits for the answer any more.
struct Withdrawn {};

// A search that runs on the server; abandoned there unless it has ended.
class RunningSearch {
public:
    RunningSearch(LdapConnection& connection, int id) : m_connection(connection), m_id(id) {}
    ~RunningSearch() {
        if (!m_ended) {
            m_connection.abandon(m_id);
        }
    }
    RunningSearch(const RunningSearch&) = delete;
    RunningSearch& operator=(const RunningSearch&) = delete;

    LdapConnection::Message receive() {
        LdapConnection::Message message = m_connection.receive(m_id);
        m_ended = message && ldap_msgtype(message.get()) == LDAP_RES_SEARCH_RESULT;
        return message;
    }

private:
    LdapConnection& m_connection;
    int m_id;
    bool m_ended = false;
};

class ServerLdap final : public LdapDirectory {
public:
    ServerLdap(ServerLdapOptions options, LdapAddress address, std::function<void(std::string)> log);
    ~ServerLdap() override;

    void start(LdapQuery query, Done done) override;
    void abandon() override;

private:
    void run();
    Job nextJob();
    void work(Job& job);
    LdapAnswer ask(const Job& job);
    LdapAnswer search(const Job& job);
    LdapConnection::Message nextMessage(RunningSearch& running, const Job& job);
    LdapPeople::Person person(LDAPMessage& entry) const;
    std::string incomplete(const LdapPeople& people, bool cut) const;
    void connect(const Job& job);
    void deliver(Job& job, LdapAnswer answer);

    const ServerLdapOptions m_options;
    const LdapAddress m_address;
    const std::function<void(std::string)> m_log;
    const std::vector<std::string> m_attributes; // names, then numbers
    const Waiter m_waiter;

    std::mutex m_mutex;
    std::condition_variable m_delivered;
    std::optional<Job> m_next;               // under m_mutex: left for the worker
    std::uint64_t m_lastId = 0;              // under m_mutex
    bool m_delivering = false;               // under m_mutex: the worker is in done
    std::atomic<std::uint64_t> m_wanted = 0; // written under m_mutex: whose answer is waited for; 0: nobody's

    std::unique_ptr<LdapConnection> m_connection; // the worker's alone
    std::thread m_worker;                         // last: it uses the others
};

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

ServerLdap::ServerLdap(ServerLdapOptions options, LdapAddress address, std::function<void(std::string)> log)
    : m_options(std::move(options)), m_address(std::move(address)), m_log(std::move(log)),
      m_attributes(joined(m_options.nameAttributes, m_options.numberAttributes)), m_worker([this] { run(); }) {
}

ServerLdap::~ServerLdap() {
    m_waiter.stop();
    m_worker.join();
}

void ServerLdap::start(LdapQuery query, Done done) {
    std::optional<Job> older; // let go of outside the lock
    {
        const std::lock_guard lock(m_mutex);
        older = std::exchange(m_next, Job{++m_lastId, std::move(query), std::move(done),
                                          std::chrono::steady_clock::now() + m_options.timeLimit});
        m_wanted = m_lastId;
    }
    m_waiter.wake();
}

void ServerLdap::abandon() {
    std::optional<Job> older;
    {
        std::unique_lock lock(m_mutex);
        older = std::exchange(m_next, std::nullopt);
        m_wanted = 0;
        if (std::this_thread::get_id() != m_worker.get_id()) {
            m_delivered.wait(lock, [this] { return !m_delivering; });
        }
    }
    m_waiter.wake();
}

// Everything from here on runs on the worker thread.

void ServerLdap::run() {
    // libldap writes to sockets that the server may have closed.
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    try {
        for (;;) {
            Job job = nextJob();
            work(job);
        }
    } catch (const Stopped&) {
        m_connection.reset();
    }
}

Job ServerLdap::nextJob() {
    for (;;) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_next) {
                return *std::exchange(m_next, std::nullopt);
            }
        }
        if (m_connection && !m_connection->isAlive()) {
            m_connection.reset();
        }
        m_waiter.wait(m_connection ? m_connection->descriptor() : -1, POLLIN,
                      std::chrono::steady_clock::now() + std::chrono::hours(1));
    }
}

void ServerLdap::work(Job& job) {
    LdapAnswer answer;
    try {
        answer = ask(job);
    } catch (const Withdrawn&) {
        return;
    } catch (const std::exception& failure) { // an LdapFailure, or the process has no memory, thread or socket left
        m_connection.reset();
        answer.problem = m_address.url + ": " + failure.what();
    }
    deliver(job, std::move(answer));
}

LdapAnswer ServerLdap::ask(const Job& job) {
    if (job.query.key.empty()) {
        return {true, {}, {}};
    }
    const bool kept = m_connection != nullptr;
    if (!kept) {
        connect(job);
    }
    try {
        return search(job);
    } catch (const LdapFailure& failure) {
        if (!kept || !failure.lost()) {
            throw;
        }
    }
    m_connection.reset();
    m_log(m_address.url + ": the server had closed the connection; connecting again");
    connect(job);
    return search(job);
}

void ServerLdap::connect(const Job& job) {
    m_connection = std::make_unique<LdapConnection>(m_options, m_address, m_waiter, job.deadline);
}

LdapAnswer ServerLdap::search(const Job& job) {
    const std::string& key = job.query.key;
    const bool digits = CommonAPI_IsSearchByT9(key);
    const int asked = job.query.maxCount > 0 ? job.query.maxCount : m_options.sizeLimit;
    const int limit = m_options.sizeLimit > 0 ? std::min(asked, m_options.sizeLimit) : asked;
    const auto left = std::chrono::ceil<std::chrono::seconds>(job.deadline - std::chrono::steady_clock::now());

    // Of the people that a number filter finds only some hold the key, so the server cannot count them.
    LdapPeople people(digits ? key : std::string(), static_cast<std::size_t>(limit));
    RunningSearch running(*m_connection, m_connection->search(digits ? numberFilter(m_options.numberFilter, key)
                                                                     : nameFilter(m_options.nameFilter, key),
                                                              m_attributes, digits ? 0 : limit,
                                                              static_cast<long>(std::max<long long>(left.count(), 1))));
    for (;;) {
        const LdapConnection::Message message = nextMessage(running, job);
        const int type = ldap_msgtype(message.get());
        if (type == LDAP_RES_SEARCH_ENTRY && !people.add(person(*message))) {
            return {true, people.takeRows(), incomplete(people, true)};
        }
        if (type != LDAP_RES_SEARCH_RESULT) {
            continue;
        }
        const LdapConnection::Result result = m_connection->result(*message);
        const bool cut = result.code == LDAP_SIZELIMIT_EXCEEDED || result.code == LDAP_ADMINLIMIT_EXCEEDED;
        if (!cut && result.code != LDAP_SUCCESS) {
            throw LdapFailure("the server refused the search (" + result.text +
                              "); check [ldap] base, scope, name_filter and number_filter, and what bind_dn may read");
        }
        return {true, people.takeRows(), incomplete(people, cut)};
    }
}

LdapConnection::Message ServerLdap::nextMessage(RunningSearch& running, const Job& job) {
    for (;;) {
        if (m_wanted != job.id) {
            throw Withdrawn();
        }
        if (std::chrono::steady_clock::now() >= job.deadline) {
            throw LdapFailure("no complete answer within the time limit of " +
                              std::to_string(m_options.timeLimit.count()) +
                              " ms; check the server and the network, or raise [ldap] time_limit_ms");
        }
        if (LdapConnection::Message message = running.receive()) {
            return message;
        }
        m_waiter.wait(m_connection->descriptor(), POLLIN, job.deadline);
    }
}

LdapPeople::Person ServerLdap::person(LDAPMessage& entry) const {
    LdapPeople::Person person;
    for (const std::string& attribute : m_options.nameAttributes) {
        for (std::string& value : m_connection->values(entry, attribute)) {
            person.names.push_back(std::move(value));
        }
    }
    for (const std::string& attribute : m_options.numberAttributes) {
        for (std::string& value : m_connection->values(entry, attribute)) {
            person.numbers.push_back(std::move(value));
        }
    }
    return person;
}

// What is missing in an answer that is given all the same; empty: nothing.
std::string ServerLdap::incomplete(const LdapPeople& people, bool cut) const {
    std::string problem;
    const auto add = [&](const std::string& text) {
        problem += (problem.empty() ? m_address.url + ": " : "; ") + text;
    };
    if (cut) {
        add("the size limit was reached, more people match than are shown (a longer key finds fewer; the limits are "
            "[ldap] size_limit and the server's own)");
    }
    if (people.nameless() != 0) {
        add(std::to_string(people.nameless()) +
            " people left out without a readable name (check [ldap] name_attributes)");
    }
    if (people.numberless() != 0) {
        add(std::to_string(people.numberless()) +
            " people left out without a number that can be dialed (check [ldap] number_attributes)");
    }
    return problem;
}

void ServerLdap::deliver(Job& job, LdapAnswer answer) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_wanted != job.id) {
            return;
        }
        m_wanted = 0;
        m_delivering = true;
    }
    job.done(std::move(answer));
    job.done = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        m_delivering = false;
    }
    m_delivered.notify_all();
}

void checkTemplate(std::string& filterTemplate, std::string standard, std::string_view key) {
    if (filterTemplate.empty()) {
        filterTemplate = std::move(standard);
    }
    if (const std::string problem = filterTemplateProblem(filterTemplate); !problem.empty()) {
        throw std::invalid_argument(std::string(key) + ": " + filterTemplate + ": " + problem);
    }
}

void checkAttributes(const std::vector<std::string>& attributes, std::string_view key) {
    if (attributes.empty()) {
        throw std::invalid_argument(std::string(key) + ": at least one attribute is needed");
    }
    for (const std::string& attribute : attributes) {
        if (!isAttributeName(attribute)) {
            throw std::invalid_argument(std::string(key) + ": " + attribute + ": not an attribute's name");
        }
    }
}

} // namespace

std::shared_ptr<LdapDirectory> makeServerLdap(ServerLdapOptions options, std::function<void(std::string)> log) {
    LdapAddress address = parseLdapUrl(options.url);
    checkAttributes(options.nameAttributes, "name_attributes");
    checkAttributes(options.numberAttributes, "number_attributes");
    checkTemplate(options.nameFilter, defaultNameFilter(options.nameAttributes, options.numberAttributes),
                  "name_filter");
    checkTemplate(options.numberFilter, defaultNumberFilter(options.numberAttributes), "number_filter");
    if (!log) {
        log = [](const std::string&) {};
    }
    if (!options.password.empty() && !address.tls && !options.startTls) {
        log(address.url + ": the password is sent unprotected; set [ldap] starttls = on or use ldaps://");
    }
    return std::make_shared<ServerLdap>(std::move(options), std::move(address), std::move(log));
}

} // namespace host
