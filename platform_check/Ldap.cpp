// Queries of the LDAP directory, as the search makes them.
#include "platform/Ldap.h"
#include "platform_check/Probes.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace platform_check {

namespace {

struct Answer {
    std::string key;
    int typeId = 0;
    int resultCode = 0;
    std::thread::id thread;
};

// Keeps the answers that it gets.
class Asker : public Receiver {
public:
    explicit Asker(void* thread = searchThread()) : m_thread(thread) {
        SetCallBackThread(thread);
        received = [this](NS_TA::CTaskAction* action) { keep(*action); };
    }
    ~Asker() override { WithdrawMessages(); }

    // Asks; fails the trial when the answer comes within the call, and waits for nothing.
    void ask(Trial& trial, const std::string& key) {
        const auto within = std::make_shared<std::atomic<bool>>(true);
        const std::thread::id self = std::this_thread::get_id();
        std::atomic<bool> came = false;
        m_within = [&came, within, self] {
            if (*within && std::this_thread::get_id() == self) {
                came = true;
            }
        };
        Ldap_SearchAsync(key, 0, 1000, this, m_thread);
        *within = false;
        trial.expect(!came, "the answer to \"%s\" came before Ldap_SearchAsync had returned", key.c_str());
        const std::lock_guard lock(m_mutex);
        m_within = nullptr;
    }

    std::vector<Answer> answers() const {
        const std::lock_guard lock(m_mutex);
        return m_answers;
    }

private:
    void keep(NS_TA::CTaskAction& action) {
        const std::lock_guard lock(m_mutex);
        if (m_within) {
            m_within();
        }
        Answer answer{"", action.GetTypeId(), action.GetResultCode(), std::this_thread::get_id()};
        if (answer.typeId == NS_TA::TASK_TYPE_LDAP) {
            answer.key = static_cast<NS_TA::CLdapAction&>(action).GetKey();
        }
        m_answers.push_back(std::move(answer));
    }

    void* const m_thread;
    mutable std::mutex m_mutex;
    std::function<void()> m_within; // guarded by m_mutex, as the answers are
    std::vector<Answer> m_answers;
};

bool waitForAnswer(Trial& trial, const Asker& asker) {
    return trial.expect(trial.workUntil([&] { return asker.count > 0; }), "no answer came within %d ms",
                        trial.phone().patience);
}

// A second answer has come when a query that was made later, and takes as long, has been answered.
void waitForAnother(Trial& trial) {
    Asker later;
    later.ask(trial, "platform check");
    trial.workUntil([&] { return later.count > 0; });
    trial.work(20);
}

void answersAreOfTheirKind(Trial& trial) {
    const NS_TA::CLdapAction action;
    trial.expect(action.GetTypeId() == NS_TA::TASK_TYPE_LDAP, "a new answer has the type id %d", action.GetTypeId());
}

void everyQueryIsAnswered(Trial& trial) {
    for (const char* key : {"ann", "2", "", "no such name in any directory", "*)(cn=*"}) {
        Asker asker;
        asker.ask(trial, key);
        if (!waitForAnswer(trial, asker)) {
            return;
        }
        const Answer answer = asker.answers().front();
        trial.expect(answer.typeId == NS_TA::TASK_TYPE_LDAP, "the answer has the type id %d", answer.typeId);
        trial.expect(answer.key == key, "the answer to \"%s\" has the key \"%s\"", key, answer.key.c_str());
    }
}

void noQueryIsAnsweredTwice(Trial& trial) {
    Asker asker;
    asker.ask(trial, "ann");
    if (waitForAnswer(trial, asker)) {
        waitForAnother(trial);
        trial.expect(asker.count == 1, "%d answers came to one query", asker.count.load());
    }
}

void newerQueriesSilenceOlder(Trial& trial) {
    Asker asker;
    for (const char* key : {"a", "an", "ann"}) {
        asker.ask(trial, key);
    }
    trial.workUntil([&] { return !asker.answers().empty() && asker.answers().back().key == "ann"; });
    waitForAnother(trial);
    const std::vector<Answer> answers = asker.answers();
    trial.expect(answers.size() == 1 && answers.front().key == "ann",
                 "of three queries for one object, %zu were answered, the first of them for \"%s\"", answers.size(),
                 answers.empty() ? "" : answers.front().key.c_str());
}

void askersAreApart(Trial& trial) {
    Asker one;
    Asker other;
    one.ask(trial, "ann");
    other.ask(trial, "bob");
    if (waitForAnswer(trial, one) && waitForAnswer(trial, other)) {
        trial.expect(one.answers().front().key == "ann" && other.answers().front().key == "bob",
                     "two objects got each other's answers");
    }
}

void closedAskersAreForgotten(Trial& trial) {
    Asker asker;
    asker.ask(trial, "ann");
    asker.WithdrawMessages();
    const int before = asker.count;
    waitForAnother(trial);
    trial.expect(asker.count == before, "an answer came to an object that had withdrawn its messages");
}

void answersComeOnTheThread(Trial& trial) {
    std::atomic<std::thread::id> executedOn;
    execute(trial, [&] { executedOn = std::this_thread::get_id(); });
    Asker asker;
    asker.ask(trial, "ann");
    if (waitForAnswer(trial, asker)) {
        trial.expect(asker.answers().front().thread == executedOn.load(), "the answer came on another thread");
    }
    if (trial.phone().work != nullptr) {
        Asker onMain(nullptr);
        onMain.ask(trial, "ann");
        if (waitForAnswer(trial, onMain)) {
            trial.expect(onMain.answers().front().thread == std::this_thread::get_id(),
                         "for a null thread, the answer did not come on the main thread");
        }
    }
}

constexpr Check checks[] = {
    {"answers are of their kind", "CLdapAction", "Ldap.h", "Its type id is TASK_TYPE_LDAP",
     "an answer is known from other actions", answersAreOfTheirKind},
    {"every query is answered", "Ldap_SearchAsync", "Ldap.h",
     "a directory that cannot be reached or does not answer in time is an answer with a result code other than 0",
     "a page that waits for LDAP is finished", everyQueryIsAnswered},
    {"no query is answered twice", "Ldap_SearchAsync", "Ldap.h", "The answer arrives later, exactly once",
     "a late answer makes one more page, not two", noQueryIsAnsweredTwice},
    {"a newer query silences the older", "Ldap_SearchAsync", "Ldap.h",
     "A newer query for the same callback object abandons the older one, which then gives no answer at all",
     "rows are those of the key that was typed last", newerQueriesSilenceOlder},
    {"askers are apart", "Ldap_SearchAsync", "Ldap.h", "The key that the query was made with, unchanged.",
     "the search and the phone's other screens may ask at the same time", askersAreApart},
    {"closed askers are forgotten", "Ldap_SearchAsync", "MsgQueueHelper.h",
     "Removes every message that is queued for this object, timer expiries and answers of asynchronous queries "
     "included",
     "the search may end while LDAP is asked", closedAskersAreForgotten},
    {"answers come on the thread", "Ldap_SearchAsync", "Ldap.h",
     "as a CLdapAction at pCallback->OnTaskActionCallback on the thread pThread, null meaning the phone's main thread",
     "an answer and a search take turns", answersComeOnTheThread},
};

} // namespace

constexpr Group ldap = {"LDAP", checks};

} // namespace platform_check
