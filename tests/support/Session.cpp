#include "tests/support/Session.h"

#include "host/kernel/HeldLocks.h"
#include "tests/support/Oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <new>
#include <numeric>
#include <random>
#include <set>

namespace test {

namespace {

// How seldom something is chosen: once in this many times.
constexpr int furtherDown = 3;        // a position that is not the first row
constexpr int anotherCount = 3;       // of rows, instead of the usual ten
constexpr int oddPosition = 20;       // negative or enormous
constexpr int withoutScreen = 40;     // a request for nobody
constexpr int failingSource = 5;      // each source, whenever contacts change
constexpr int changedSilently = 4;    // a source list that nobody tells the phone of
constexpr int ldapInList = 3;         // a place of the source list, beside those that any id takes
constexpr int olderKey = 3;           // one of the last LDAP queries is answered, and not the very last one
constexpr int failedAnswer = 5;       // of LDAP
constexpr int timerTime = 3;          // time moves by as much as the timer takes
constexpr int interruptedRequest = 4; // another thread comes in while a request is worked

constexpr int stepsBeforeFault = 40; // of the phone; at most, but for the patience
constexpr int patience = 100;        // steps of the phone until a fault takes the next one, whatever it is
constexpr int stepsAfterFault = 40;

constexpr std::size_t shownHistory = 3000; // characters

const std::vector<std::string> anyId = {localId,      callsId,   remoteId,         ldapId,
                                        enterpriseId, networkId, "unknown_search", ""};

// Too long to lie in a string itself.
const std::string longName = "Nan with a name of some length";

// The source list is read at once, as by the message thread coming in.
void readSourceList() {
    ETL_MsgQueueHelper::msgObject message{ETL_MsgQueueHelper::MSG_CONFIG_CHANGED,
                                          ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK};
    NS_WS::CWideseekController::OnMessage(message);
}

// Of what the host offers to whoever runs the phone: they are told by an exception, and try again.
template <typename Work> void unlessMemoryIsShort(const Work& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        // Nothing has happened.
    }
}

class Session : host::TraceSink {
public:
    explicit Session(std::function<int(int)> below) : m_below(std::move(below)) {
        m_oracle.sources = {{localId, {"local directory", m_phone.local}},
                            {callsId, {"call log", m_phone.calls}},
                            {remoteId, {"remote directory", m_phone.remote}},
                            {enterpriseId, {"BroadSoft directory", m_phone.broad}},
                            {networkId, {"BroadSoft directory", m_phone.broad}}};
        for (int i = 0; i < 13; ++i) {
            m_phone.recent->list.push_back({i % 3 ? "Nan" : "", {i == 6 ? "" : std::to_string(i)}, "x"});
        }
        m_oracle.calls = m_phone.recent->list;
        m_oracle.meanwhile = [this] {
            if (m_other && --m_callsUntilOther == 0) {
                m_other->onPaper();
            }
        };
        m_phone.phone.setTrace(this);
        m_phone.phone.setInterruption([this](host::PlatformCall call) {
            const bool asks = call.function == host::PlatformFunction::searchDirectory ||
                              call.function == host::PlatformFunction::recentCalls ||
                              call.function == host::PlatformFunction::searchLdap;
            if (asks && m_working && m_other && --m_callsUntilOther == 0) {
                m_other->onPhone();
            }
        });
        m_oracle.start();
    }

    ~Session() override {
        m_phone.phone.setInterruption(nullptr);
        m_phone.phone.setTrace(nullptr);
    }

    void play(long steps) {
        for (long i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            step();
            compare();
        }
        m_phone.phone.kernel().moveTime(100ms);
        while (!testing::Test::HasFailure() && workOne()) {
            compare();
        }
        EXPECT_TRUE(m_oracle.sent.empty()) << "a page never came: " << m_oracle.sent.front().second;
    }

    Aftermath playWithFault(AllocationFault fault) {
        changeContacts();
        changeList();
        act(readList());
        m_fault = fault;
        m_faultIn = pick<std::string>({"", "", "request", "timer", "LDAP answer"});
        m_untilFault = 1 + below(stepsBeforeFault) + patience;
        while (!m_struck && !testing::Test::HasFailure()) {
            step();
            if (!m_struck) {
                compare();
            }
        }
        recover();
        play(stepsAfterFault);
        m_aftermath.history = m_history;
        return m_aftermath;
    }

    const std::string& history() const { return m_history; }

private:
    // The same thing done on the phone and in the oracle.
    struct Deed {
        std::string what;
        std::function<void()> onPhone;
        std::function<void()> onPaper;
    };

    // Something that may happen. It is chosen as often as its weight says, out of the sum of all weights.
    template <typename Result> struct Choice {
        const char* name;
        int weight;
        Result (Session::*happens)();
    };

    template <typename Result, std::size_t size> const Choice<Result>& choose(const Choice<Result> (&table)[size]) {
        const auto add = [](int sum, const Choice<Result>& choice) { return sum + choice.weight; };
        int left = below(std::accumulate(std::begin(table), std::end(table), 0, add));
        return *std::find_if(std::begin(table), std::end(table),
                             [&](const Choice<Result>& choice) { return (left -= choice.weight) < 0; });
    }

    void step() {
        static constexpr Choice<void> steps[] = {
            {"a message is worked", 60, &Session::workAMessage}, // any that may come next
            {"somebody types", 14, &Session::type},
            {"time passes", 10, &Session::passTime},
            {"LDAP answers", 9, &Session::answerLdap}, // whether it is still asked or not
            {"a caller acts", 4, &Session::actAnyhow}, // one of the deeds below
            {"contacts change", 2, &Session::changeContacts},
            {"the source list changes", 1, &Session::changeList},
            {"a screen goes", 1, &Session::replaceScreen}, // detached and destroyed; a new one takes its place
        };
        const Choice<void>& chosen = choose(steps);
        m_history += std::string("\n  ") + chosen.name;
        (this->*chosen.happens)();
    }

    Deed anyDeed() {
        static constexpr Choice<Deed> deeds[] = {
            {"type", 28, &Session::request},
            {"detach", 4, &Session::detachAny},
            {"read the list", 4, &Session::readList},
            {"reset", 3, &Session::reset},
            {"stop", 1, &Session::stop},
        };
        const Choice<Deed>& chosen = choose(deeds);
        Deed deed = (this->*chosen.happens)();
        deed.what = chosen.name + (" " + deed.what);
        return deed;
    }

    std::string nextKey() {
        static constexpr Choice<std::string> keys[] = {
            {"a character more", 3, &Session::longerKey},  {"the same key", 2, &Session::sameKey},
            {"a character less", 1, &Session::shorterKey}, {"a first character", 1, &Session::firstCharacter},
            {"an odd spelling", 1, &Session::oddKey},      {"a long one", 1, &Session::longKey},
        };
        return (this->*choose(keys).happens)();
    }

    int below(int end) { return m_below(end); }
    bool oneIn(int n) { return below(n) == 0; }
    template <typename T> const T& pick(const std::vector<T>& from) {
        return from[static_cast<std::size_t>(below(static_cast<int>(from.size())))];
    }

    void onTrace(const host::TraceEvent& event) override {
        const NoFault none;
        if (event.kind == host::TraceKind::sourceAsked) {
            m_asked.push_back(std::string(event.source) + " " + std::string(event.key));
        }
        m_sent += event.kind == host::TraceKind::pageSent ? 1U : 0U;
        m_aftermath.sourceFailed |= event.problem.find("memory") != std::string_view::npos;
    }

    void note(const std::string& what) {
        m_history += "\n    " + what;
        m_history.erase(0, m_history.size() - std::min(m_history.size(), shownHistory));
    }

    // ---- what callers do ----

    std::string longerKey() { return m_key.size() < 4 ? m_key + firstCharacter() : "5"; }
    std::string shorterKey() { return m_key.substr(0, m_key.size() - (m_key.empty() ? 0 : 1)); }
    std::string sameKey() { return m_key; }
    std::string firstCharacter() { return pick<std::string>({"5", "1", "a", "n"}); }
    std::string longKey() { return "nan with a name of"; }
    std::string oddKey() { return pick<std::string>({"", " ", "5", "51", "A", " +5", "5-1 ", "a n", "55x"}); }

    Deed request() {
        m_key = nextKey();
        Oracle::Request asked{m_key, oneIn(furtherDown) ? below(5) : 0, oneIn(anotherCount) ? below(4) : 10, below(3)};
        if (oneIn(oddPosition)) {
            asked.from = pick<int>({-1, INT_MAX, -INT_MAX, 7});
            asked.count = pick<int>({-1, 0, INT_MAX, 1});
        }
        asked.screen = oneIn(withoutScreen) ? Oracle::nobody : asked.screen;
        const std::string what = "\"" + asked.key + "\" from " + std::to_string(asked.from) + " count " +
                                 std::to_string(asked.count) + " screen " + std::to_string(asked.screen);
        return {what, [=, this] { Wideseek_SearchUnion(asked.key, asked.from, asked.count, screen(asked.screen)); },
                [=, this] { m_oracle.handOver(asked); }};
    }

    Deed detach(int of) {
        return {"screen " + std::to_string(of), [=, this] { Wideseek_ResetCallBack(screen(of)); },
                [=, this] { m_oracle.detach(of); }};
    }

    Deed detachAny() { return detach(below(3)); }
    Deed readList() {
        return {"", readSourceList, [this] { m_oracle.reload(); }};
    }
    Deed reset() {
        return {"", Wideseek_ResetKey, [this] { m_oracle.reset(); }};
    }
    Deed stop() {
        return {"", NS_WS::CWideseekController::ReleaseInstance, [this] { m_oracle.stop(); }};
    }

    void act(const Deed& deed) {
        note(deed.what);
        if (onPhone(deed.onPhone)) {
            deed.onPaper();
            forgetDeadAnswers();
        }
    }

    void type() { act(request()); }
    void actAnyhow() { act(anyDeed()); }

    Screen* screen(int index) {
        return index == Oracle::nobody ? nullptr : m_screens[static_cast<std::size_t>(index)].get();
    }

    void replaceScreen() {
        const int index = below(3);
        act(detach(index));
        m_screens[static_cast<std::size_t>(index)] = std::make_unique<Screen>();
        m_sent -= std::erase_if(m_oracle.sent, [&](const auto& sent) { return sent.first == index; });
    }

    // ---- the phone around them ----

    std::vector<Contact> people() {
        const std::vector<std::string> names = {"Ann", "ann", "Nan", "A N", "Jil", "5a", longName};
        const std::vector<std::string> numbers = {"5", "51", "+515", "1", "155", "", "9", "+5155515551555155"};
        std::vector<Contact> list;
        for (int i = below(6); i > 0; --i) {
            list.push_back({pick(names), {pick(numbers)}, "e"});
            for (int more = below(3); more > 0; --more) {
                list.back().numbers.push_back(pick(numbers));
            }
        }
        return list;
    }

    void changeContacts() {
        for (const auto& [id, source] : m_oracle.sources) {
            source.second->contacts = people();
            source.second->fails = oneIn(failingSource);
        }
        m_oracle.recentCalls = oneIn(2);
        m_phone.phone.setConfig("FeaturesRecentCallEnable", m_oracle.recentCalls ? 1 : 2);
    }

    void changeList() {
        m_oracle.file.clear();
        for (int i = below(6); i > 0; --i) {
            m_oracle.file.push_back(oneIn(ldapInList) ? ldapId : pick(anyId));
            note(m_oracle.file.back());
        }
        m_phone.setSourceList(sourceListOf(m_oracle.file));
        if (!oneIn(changedSilently)) {
            onPhone([this] {
                unlessMemoryIsShort(
                    [this] { m_phone.phone.announceConfigChange(ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK); });
            });
        }
    }

    void passTime() { m_phone.phone.kernel().moveTime(host::Duration(1ms) * (oneIn(timerTime) ? 100 : below(60))); }

    void answerLdap() {
        if (m_ldapKeys.empty()) {
            return;
        }
        const std::string key = oneIn(olderKey) ? pick(m_ldapKeys) : m_ldapKeys.back();
        const std::vector<Contact> rows = m_ldapRows = people();
        const bool succeeded = !oneIn(failedAnswer);
        host::LdapAnswer answer = ldapAnswerOf(rows, succeeded);
        bool taken = false;
        const auto deliver = [&] {
            unlessMemoryIsShort([&] { taken = m_phone.phone.answerLdapAgain(key, std::move(answer)); });
        };
        if (onPhone(deliver) && taken) {
            note("\"" + key + "\"" + (succeeded ? "" : " with a failure"));
            m_answers.emplace_back(m_askedLife, [=, this] { m_oracle.answer(key, rows, succeeded); });
        }
    }

    // What was queued for a search that is gone has gone with it.
    void forgetDeadAnswers() {
        std::erase_if(m_answers, [this](const auto& answer) { return !m_oracle.isAlive(answer.first); });
    }

    // ---- messages ----

    void workAMessage() { workOne(); }

    // Works one of the messages that may come next, with another thread coming in somewhere in the middle.
    bool workOne() {
        const std::vector<host::ReadyMessage> ready = m_phone.phone.kernel().ready();
        if (ready.empty()) {
            EXPECT_FALSE(m_oracle.timer() && *m_oracle.timer() <= m_phone.phone.kernel().now()) << "no timer expired";
            return false;
        }
        const host::ReadyMessage& message = pick(ready);
        m_oracle.now = m_phone.phone.kernel().now();
        note(message.label);
        if (message.label == "request" && oneIn(interruptedRequest)) {
            m_other = anyDeed();
            m_callsUntilOther = 1 + below(8);
            note("  and in its call " + std::to_string(m_callsUntilOther) + ": " + m_other->what);
        }
        const int until = m_callsUntilOther;
        m_working = true;
        const bool isKnown =
            onPhone([&] { EXPECT_TRUE(m_phone.phone.kernel().step(message.sequence)); }, message.label);
        m_working = false;
        m_callsUntilOther = until;
        if (isKnown) {
            onPaper(message.label);
        } else {
            const bool wasQueued = message.label == "request" || message.label == "LDAP answer";
            m_aftermath.wasWork = !m_other && message.label != "phone message" &&
                                  m_oracle.requestsQueued() + m_answers.size() == (wasQueued ? 1U : 0U);
        }
        m_other.reset();
        forgetDeadAnswers();
        return true;
    }

    void onPaper(const std::string& label) {
        if (label == "request") {
            m_oracle.work();
        } else if (label == "timer" && m_oracle.timer()) {
            EXPECT_LE(*m_oracle.timer(), m_oracle.now) << "early";
            m_oracle.expire();
        } else if (label == "timer") {
            EXPECT_TRUE(m_oracle.hasPast()) << "a timer nobody armed";
        } else if (label == "LDAP answer") {
            ASSERT_FALSE(m_answers.empty());
            const auto [life, onPaper] = m_answers.front();
            m_answers.pop_front();
            if (life == m_oracle.life()) {
                onPaper();
            }
        } else if (label == "phone message") {
            m_oracle.reload();
        } else if (label == "callback") {
            checkPage();
        }
    }

    void checkPage() {
        ASSERT_FALSE(m_oracle.sent.empty()) << "a page nobody expects";
        std::vector<std::pair<int, std::string>> arrived;
        for (int i = 0; i < 3; ++i) {
            for (const WideseekListData& page : std::exchange(screen(i)->pages, {})) {
                arrived.emplace_back(i, Oracle::textOf(page));
            }
        }
        EXPECT_EQ(arrived, (decltype(arrived){m_oracle.sent.front()}));
        m_oracle.sent.pop_front();
        --m_sent;
    }

    // ---- memory runs out ----

    // Has the phone do its part of a step. False when it was the one without memory: the oracle does not know then what
    // has come of it.
    bool onPhone(const std::function<void()>& work, const std::string& message = "") {
        if (m_untilFault == 0 || --m_untilFault >= patience ||
            (m_untilFault > 0 && !m_faultIn.empty() && m_faultIn != message)) {
            work();
            return true;
        }
        allocationFault = m_fault;
        EXPECT_NO_THROW(work());
        m_aftermath.failed = std::exchange(allocationFault, {}).failed;
        EXPECT_EQ(host::heldLocks(), 0U);
        m_aftermath.beganAnew = std::any_of(m_phone.log.begin(), m_phone.log.end(),
                                            [](const auto& line) { return line.starts_with("MyClearResult"); });
        m_untilFault = 0;
        m_struck = true;
        return false;
    }

    // Finds a key without and with asking all sources, and then brings phone and oracle into the same state: the source
    // list is read, nobody waits, and no key is held.
    void recover() {
        comeToRest();
        for (WideseekListData page : takePages()) {
            page.strKey.clear(); // a late answer's page spells it in another way
            page.listItem.clear();
            m_aftermath.pages.insert(Oracle::textOf(page));
        }
        m_aftermath.pages.erase(Oracle::textOf(WideseekListData())); // which a screen took without memory for it
        m_key += firstCharacter();
        note("after the fault \"" + m_key + "\"");
        m_aftermath.nextKey = rowsFor(m_key);
        Wideseek_ResetKey();
        m_aftermath.afresh = rowsFor(m_key);
        for (int i = 0; i < 3; ++i) {
            Wideseek_ResetCallBack(screen(i));
        }
        readSourceList();
        m_oracle.startAnew();
        m_answers.clear();
        m_ldapKeys.clear();
        m_asked.clear();
        m_sent = 0;
        m_lifeBefore = m_oracle.life();
    }

    void comeToRest() {
        m_phone.run(1s);
        m_phone.ldap->answer(m_ldapRows);
        m_phone.run(1s);
    }

    // Asked for twice, since a source that nobody knows keeps the page with LDAP's rows away.
    std::set<std::string> rowsFor(const std::string& key) {
        m_phone.type(key, *m_screens[0], 0, 0);
        comeToRest();
        m_phone.type(key, *m_screens[0], 0, 0);
        const std::vector<WideseekListData> pages = takePages();
        const std::vector<std::string> rows =
            pages.empty() ? std::vector<std::string>{"no page"} : rowsIn(pages.back());
        return {rows.begin(), rows.end()};
    }

    // Whatever page has come must be one.
    std::vector<WideseekListData> takePages() {
        std::vector<WideseekListData> pages;
        for (const auto& each : m_screens) {
            for (WideseekListData& page : std::exchange(each->pages, {})) {
                checkForm(page);
                pages.push_back(std::move(page));
            }
        }
        return pages;
    }

    static void checkForm(const WideseekListData& page) {
        std::set<std::pair<std::string, std::string>> rows;
        for (const WideseekItemData& row : page.listItem) {
            EXPECT_TRUE(!row.strNumber.empty() && rows.emplace(row.strName, row.strNumber).second) << row.strNumber;
        }
        const long long wanted = page.iSearchCount == 0 ? INT_MAX : page.iSearchCount;
        const long long there = std::max(0LL, static_cast<long long>(page.iTotalCount) - page.iFromIndex);
        const long long left = std::min(wanted, there) - std::ssize(page.listItem);
        // Of recent calls, blank ones are not shown.
        EXPECT_TRUE(left == 0 || (left > 0 && page.strKey.empty())) << Oracle::textOf(page);
    }

    void compare() {
        const int life = std::exchange(m_lifeBefore, m_oracle.life());
        EXPECT_EQ(m_asked, m_oracle.asked);
        for (const std::string& question : m_asked) {
            if (question.starts_with("LDAP ")) {
                m_ldapKeys.push_back(question.substr(5));
                m_askedLife = life;
            }
        }
        m_ldapKeys.erase(m_ldapKeys.begin(), m_ldapKeys.end() - std::min<std::ptrdiff_t>(std::ssize(m_ldapKeys), 5));
        EXPECT_EQ(m_sent, m_oracle.sent.size()) << "pages on their way";
        m_asked.clear();
        m_oracle.asked.clear();
        m_phone.log.clear();
    }

    const std::function<int(int)> m_below;
    SteppedPhone m_phone{{}};
    std::array<std::unique_ptr<Screen>, 3> m_screens = {std::make_unique<Screen>(), std::make_unique<Screen>(),
                                                        std::make_unique<Screen>()};
    Oracle m_oracle;
    std::string m_key;
    std::optional<Deed> m_other;
    int m_callsUntilOther = 0;
    bool m_working = false;
    std::vector<std::string> m_asked;
    std::size_t m_sent = 0;
    std::vector<std::string> m_ldapKeys;
    std::vector<Contact> m_ldapRows; // of the last answer
    int m_lifeBefore = 0;
    int m_askedLife = 0;
    std::deque<std::pair<int, std::function<void()>>> m_answers; // with the life that asked
    std::string m_history;

    AllocationFault m_fault;
    std::string m_faultIn; // which message is to meet it; "": whatever the phone does
    int m_untilFault = 0;  // steps of the phone; 0: none is to come
    bool m_struck = false;
    Aftermath m_aftermath;
};

} // namespace

std::string playSession(long steps, std::function<int(int)> below) {
    Session session(std::move(below));
    session.play(steps);
    return session.history();
}

Aftermath playSessionWithFault(std::function<int(int)> below, AllocationFault fault) {
    return Session(std::move(below)).playWithFault(fault);
}

std::function<int(int)> choicesFrom(long start) {
    return [random = std::mt19937_64(static_cast<unsigned long long>(start))](int end) mutable {
        return std::uniform_int_distribution<int>(0, end - 1)(random);
    };
}

long fromEnvironment(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtol(text, nullptr, 10) : otherwise;
}

} // namespace test
