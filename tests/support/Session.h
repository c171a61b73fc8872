// A session at the phone and, at the same time, on the oracle's paper: screens type, page, leave and come back, sources
// fail, LDAP answers late, twice, never or for old keys, the source list changes, the search stops and starts. Which of
// it happens next, others say: a random generator or a fuzzer.
//
//     Session session([&](int end) { return random() % end; });
//     session.run(1000); // fails the test when a page is not the oracle's
#pragma once

#include "tests/support/Oracle.h"

#include <gtest/gtest.h>

#include <array>

namespace test {

inline const std::vector<std::string> allIds = {
    "local_directory_search",     "calllog_search",           "remote_directory_search", "ldap_search",
    "BroadSoft_directory_search", "Network_directory_search", "unknown_search",          ""};

class Session : host::TraceSink {
public:
    // below(n) gives the next number of the session, from 0 to n - 1.
    explicit Session(std::function<int(int)> below) : m_below(std::move(below)) {
        m_oracle.sources = {{allIds[0], {"local directory", m_phone.local}},
                            {allIds[1], {"call log", m_phone.calls}},
                            {allIds[2], {"remote directory", m_phone.remote}},
                            {allIds[4], {"BroadSoft directory", m_phone.broad}},
                            {allIds[5], {"BroadSoft directory", m_phone.broad}}};
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
        m_phone.phone.setInterruption([this](std::string_view function) {
            const bool asks = function.find("Dir") != std::string_view::npos || function.starts_with("Ldap_");
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

    void run(long steps) {
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

    // The last steps, a line each.
    const std::string& history() const { return m_history; }

private:
    // The same thing done on the phone and in the oracle.
    struct Deed {
        std::string what;
        std::function<void()> onPhone;
        std::function<void()> onPaper;
    };

    int below(int end) { return m_below(end); }
    bool oneIn(int n) { return below(n) == 0; }
    template <typename T> const T& pick(const std::vector<T>& from) {
        return from[static_cast<std::size_t>(below(static_cast<int>(from.size())))];
    }

    void onTrace(const host::TraceEvent& event) override {
        if (event.kind == host::TraceKind::sourceAsked) {
            m_asked.push_back(std::string(event.source) + " " + std::string(event.key));
        }
        m_sent += event.kind == host::TraceKind::pageSent ? 1U : 0U;
    }

    void note(const std::string& what) {
        m_history += "\n  " + what;
        m_history.erase(0, m_history.size() - std::min<std::size_t>(m_history.size(), 2000));
    }

    // ---- what callers do ----

    std::string nextKey() {
        const char* letters = "51an";
        switch (below(8)) {
        case 0:
            return pick<std::string>({"", " ", "5", "51", "A", " +5", "5-1 ", "a n", "55x"});
        case 1:
            return m_key.substr(0, m_key.size() - (m_key.empty() ? 0 : 1));
        case 2:
        case 3:
            return m_key;
        case 4:
            return std::string(1, letters[below(4)]);
        default:
            return m_key.size() < 4 ? m_key + letters[below(4)] : "5";
        }
    }

    Deed request() {
        m_key = nextKey();
        Oracle::Request asked{m_key, oneIn(3) ? below(5) : 0, oneIn(3) ? below(4) : 10, below(3)};
        if (oneIn(20)) {
            asked.from = pick<int>({-1, 2147483647, -2147483647, 7});
            asked.count = pick<int>({-1, 0, 2147483647, 1});
        }
        asked.screen = oneIn(40) ? Oracle::nobody : asked.screen;
        const std::string what = "type \"" + asked.key + "\" " + std::to_string(asked.from) + "+" +
                                 std::to_string(asked.count) + " screen " + std::to_string(asked.screen);
        return {what, [=, this] { Wideseek_SearchUnion(asked.key, asked.from, asked.count, screen(asked.screen)); },
                [=, this] { m_oracle.handOver(asked); }};
    }

    Deed detach(int of) {
        return {"detach screen " + std::to_string(of), [=, this] { Wideseek_ResetCallBack(screen(of)); },
                [=, this] { m_oracle.detach(of); }};
    }

    // The source list is read at once, as by the message thread coming in.
    static void reload() {
        ETL_MsgQueueHelper::msgObject message{0x10007, 52};
        NS_WS::CWideseekController::OnMessage(message);
    }

    Deed anyDeed() {
        const int dice = below(40);
        if (dice < 4) {
            return detach(below(3));
        }
        if (dice < 5) {
            return {"stop", NS_WS::CWideseekController::ReleaseInstance, [this] { m_oracle.stop(); }};
        }
        if (dice < 8) {
            return {"reset", Wideseek_ResetKey, [this] { m_oracle.reset(); }};
        }
        return dice < 12 ? Deed{"reload", reload, [this] { m_oracle.reload(); }} : request();
    }

    void act(const Deed& deed) {
        note(deed.what);
        deed.onPhone();
        deed.onPaper();
        forgetDeadAnswers();
    }

    Screen* screen(int index) {
        return index == Oracle::nobody ? nullptr : m_screens[static_cast<std::size_t>(index)].get();
    }

    void replaceScreen(int index) {
        act(detach(index));
        note("destroy screen " + std::to_string(index));
        m_screens[static_cast<std::size_t>(index)] = std::make_unique<Screen>();
        m_sent -= std::erase_if(m_oracle.sent, [&](const auto& sent) { return sent.first == index; });
    }

    // ---- the phone around them ----

    std::vector<Contact> people() {
        std::vector<Contact> list;
        for (int i = below(6); i > 0; --i) {
            const std::vector<std::string> numbers = {"5", "51", "+515", "1", "155", "", "9"};
            list.push_back({pick<std::string>({"Ann", "ann", "Nan", "A N", "Jil", "5a"}), {pick(numbers)}, "e"});
            for (int more = below(3); more > 0; --more) {
                list.back().numbers.push_back(pick(numbers));
            }
        }
        return list;
    }

    void changeContacts() {
        for (const auto& [id, source] : m_oracle.sources) {
            source.second->contacts = people();
            source.second->fails = oneIn(5);
        }
        m_oracle.recentCalls = oneIn(2);
        m_phone.phone.setConfig("FeaturesRecentCallEnable", m_oracle.recentCalls ? 1 : 2);
        note("other contacts");
    }

    void changeList() {
        m_oracle.file.clear();
        std::string note = "list";
        for (int i = below(6); i > 0; --i) {
            m_oracle.file.push_back(oneIn(3) ? allIds[3] : pick(allIds));
            note += " " + m_oracle.file.back();
        }
        m_phone.setSourceList(sourceListOf(m_oracle.file));
        this->note(note);
        if (!oneIn(4)) {
            m_phone.phone.announceConfigChange(52);
        }
    }

    void answerLdap() {
        const std::string key = oneIn(3) ? pick(m_ldapKeys) : m_ldapKeys.back();
        const std::vector<Contact> rows = people();
        const bool succeeded = !oneIn(5);
        if (m_phone.phone.answerLdapAgain(key, ldapAnswerOf(rows, succeeded))) {
            note("LDAP answers \"" + key + "\" " + (succeeded ? "" : "with a failure"));
            m_answers.emplace_back(m_askedLife, [=, this] { m_oracle.answer(key, rows, succeeded); });
        }
    }

    // What was queued for a search that is gone has gone with it.
    void forgetDeadAnswers() {
        std::erase_if(m_answers, [this](const auto& answer) { return !m_oracle.isAlive(answer.first); });
    }

    // ---- steps ----

    void step() {
        const int dice = below(100);
        if (dice < 14) {
            act(request());
        } else if (dice < 18) {
            act(anyDeed());
        } else if (dice < 20) {
            changeContacts();
        } else if (dice < 21) {
            oneIn(2) ? changeList() : replaceScreen(below(3));
        } else if (dice < 30 && !m_ldapKeys.empty()) {
            answerLdap();
        } else if (dice < 40) {
            m_phone.phone.kernel().moveTime(host::Duration(1ms) * (oneIn(3) ? 100 : below(60)));
            note("time passes");
        } else {
            workOne();
        }
    }

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
        if (message.label == "request" && oneIn(4)) {
            m_other = anyDeed();
            m_callsUntilOther = 1 + below(8);
            note("    meanwhile, " + std::to_string(m_callsUntilOther) + ": " + m_other->what);
        }
        const int until = m_callsUntilOther;
        m_working = true;
        EXPECT_TRUE(m_phone.phone.kernel().step(message.sequence));
        m_working = false;
        m_callsUntilOther = until;
        onPaper(message.label);
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
    int m_lifeBefore = 0;
    int m_askedLife = 0;
    std::deque<std::pair<int, std::function<void()>>> m_answers; // with the life that asked
    std::string m_history;
};

} // namespace test
