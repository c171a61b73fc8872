#include "host/ldap/server/ServerLdap.h"

#include "host/ldap/server/LdapAnswers.h"
#include "host/ldap/server/LdapConnection.h"
#include "host/ldap/server/LdapFilter.h"
#include "host/ldap/server/LdapSearch.h"
#include "host/ldap/server/SignInPause.h"

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>
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

// Calls a function when it goes.
template <typename Function> class Finally {
public:
    explicit Finally(Function function) : m_function(std::move(function)) {}
    ~Finally() { m_function(); }
    Finally(const Finally&) = delete;
    Finally& operator=(const Finally&) = delete;

private:
    Function m_function;
};

// Thrown on the worker thread when nobody waits for the answer any more.
struct Withdrawn {};

class ServerLdap final : public ServerLdapDirectory {
public:
    ServerLdap(ServerLdapOptions options, LdapAddress address, std::function<void(std::string)> log);
    ~ServerLdap() override;

    void start(LdapQuery query, Done done) override;
    void abandon() override;

    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override { return m_answers.holds(rows); }
    std::optional<KnownContact> find(const NameAndNumber& row) const override { return m_answers.find(row); }
    std::size_t size() const override { return m_answers.size(); }

private:
    void run();
    Job nextJob();
    void work(Job& job);
    LdapAnswer ask(const Job& job);
    LdapAnswer search(const Job& job);
    void connect(const Job& job);
    void deliver(Job& job, LdapAnswer answer);
    void recover();
    std::string currentProblem() const;

    const ServerLdapOptions m_options;
    const LdapAddress m_address;
    const std::function<void(std::string)> m_log;
    const Waiter m_waiter;

    LdapAnswers m_answers;

    std::mutex m_mutex;
    std::condition_variable m_delivered;
    std::optional<Job> m_next;               // under m_mutex: left for the worker
    std::uint64_t m_lastId = 0;              // under m_mutex
    bool m_delivering = false;               // under m_mutex: the worker is in done
    std::atomic<std::uint64_t> m_wanted = 0; // written under m_mutex: whose answer is waited for; 0: nobody's

    std::unique_ptr<LdapConnection> m_connection; // the worker's alone
    SignInPause m_pause;                          // the worker's alone
    std::thread m_worker;                         // last: it uses the others
};

ServerLdap::ServerLdap(ServerLdapOptions options, LdapAddress address, std::function<void(std::string)> log)
    : m_options(std::move(options)), m_address(std::move(address)), m_log(std::move(log)), m_worker([this] { run(); }) {
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
    blockBrokenPipe(); // libldap writes to sockets that the server may have closed
    for (;;) {
        try {
            Job job = nextJob();
            work(job);
        } catch (const Stopped&) {
            m_connection.reset();
            return;
        } catch (...) {
            recover();
        }
    }
}

// After an exception that no answer can tell of: the waiting failed, or the receiver of an answer did. A pause gives
// the process time to get what it has none left of.
void ServerLdap::recover() {
    m_connection.reset();
    try {
        m_log(currentProblem());
    } catch (...) { // there is nobody else to tell
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
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
    } catch (const Stopped&) {
        throw;
    } catch (...) { // an LdapFailure, or the process has no memory, thread or socket left
        m_connection.reset();
        answer.problem = currentProblem();
    }
    deliver(job, std::move(answer));
}

// Of the exception that is being handled. No memory is needed for the shortest text.
std::string ServerLdap::currentProblem() const {
    try {
        try {
            throw;
        } catch (const std::bad_alloc&) {
            return m_address.url + ": there was no memory for the answer; lower the limits in [ldap]";
        } catch (const std::exception& failure) {
            return m_address.url + ": " + failure.what();
        } catch (...) {
            return m_address.url + ": an error without a description";
        }
    } catch (...) {
        return "no memory";
    }
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
        if (!kept || failure.kind() != LdapFailure::Kind::lost) {
            throw;
        }
    }
    m_connection.reset();
    m_log(m_address.url + ": the server had closed the connection; connecting again");
    connect(job);
    return search(job);
}

void ServerLdap::connect(const Job& job) {
    const std::string untried = "; so that the account is not locked, no sign-in is tried for ";
    if (const auto left = m_pause.left(std::chrono::steady_clock::now()); left.count() > 0) {
        throw LdapFailure("the server refused the sign-in as \"" + m_options.bindDn + "\" a while ago" + untried +
                          std::to_string(left.count()) +
                          " more seconds; check [ldap] bind_dn and password and start again");
    }
    try {
        m_connection = std::make_unique<LdapConnection>(m_options, m_address, m_waiter, job.deadline);
        m_pause.accepted();
    } catch (const LdapFailure& failure) {
        if (failure.kind() != LdapFailure::Kind::refused) {
            throw;
        }
        const auto pause = m_pause.refused(std::chrono::steady_clock::now());
        throw LdapFailure(failure.what() + untried + std::to_string(pause.count()) +
                          (pause.count() == 1 ? " minute" : " minutes"));
    }
}

LdapAnswer ServerLdap::search(const Job& job) {
    const auto goOn = [&] {
        if (m_wanted != job.id) {
            throw Withdrawn();
        }
    };
    auto [answer, people] = LdapSearch(m_options, *m_connection, m_waiter, job.deadline, goOn).answer(job.query);
    m_answers.add(std::move(people));
    if (!answer.problem.empty()) {
        answer.problem.insert(0, m_address.url + ": ");
    }
    return answer;
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
    const Finally delivered([this] {
        const std::lock_guard lock(m_mutex);
        m_delivering = false;
        m_delivered.notify_all();
    });
    const Done done = std::move(job.done); // let go of before it counts as delivered
    done(std::move(answer));
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

std::shared_ptr<ServerLdapDirectory> makeServerLdap(ServerLdapOptions options, std::function<void(std::string)> log) {
    LdapAddress address = parseLdapUrl(options.url);
    checkAttributes(options.nameAttributes, "name_attributes");
    checkAttributes(options.numberAttributes, "number_attributes");
    if (!options.detailAttributes.empty()) {
        checkAttributes(options.detailAttributes, "detail_attributes");
    }
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
