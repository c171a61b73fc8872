// All orders of a few events, for one source that answers at once, LDAP, the timer and two requests: between whole
// messages, and between the platform calls inside one, where another thread comes in. Whatever the order, a page holds
// rows of its own request, goes to who asked, comes once, and not after a newer request, a detach or a stop.

#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace {

using namespace test;

const std::vector<std::string> listBefore = {"local_directory_search", "ldap_search"};
const std::vector<std::string> listAfter = {"ldap_search", "local_directory_search", "remote_directory_search"};

// No name contains a 5 or a 9 in its keypad form.
const std::vector<Contact> localPeople = {{"Ann", {"51"}}, {"Bob", {"5"}}, {"Gus", {"9"}}, {"Cem", {"8"}}};
const std::vector<Contact> remotePeople = {{"Eva", {"515"}}, {"Ann", {"51"}}};
const std::vector<Contact> ldapPeople = {{"Mia", {"511"}}, {"Dora", {"59"}}, {"Bob", {"5"}}};

std::set<std::string> rowsFor(const std::string& key, const std::vector<std::vector<Contact>>& sources) {
    std::set<std::string> rows;
    for (const std::vector<Contact>& people : sources) {
        for (const Contact& person : people) {
            if (!key.empty() && person.numbers[0].find(key) != std::string::npos) {
                rows.insert(person.name + " " + person.numbers[0]);
            }
        }
    }
    return rows;
}

enum class Event {
    sameKey,
    longerKey,
    otherKey,
    emptyKey,
    sameKeyElsewhere, // with another callback object
    reset,
    reconfigure,
    detach,
    detachElsewhere,
    stop,
    ldapAnswers, // the answer is queued
    timePasses,  // 100 ms
    work,        // the search thread works what is first in its queue
};

constexpr std::array eventNames = {"same key",     "longer key",  "other key", "empty key",        "same key elsewhere",
                                   "reset",        "reconfigure", "detach",    "detach elsewhere", "stop",
                                   "LDAP answers", "time passes", "work"};

// The key that has been searched for, with LDAP's answer, before the first request is handed over; null: none.
struct Beginning {
    const char* before;
    const char* first;
};

const std::vector<Beginning> beginnings = {{nullptr, "5"}, {"5", "51"}, {"5", "5"}, {"5", ""}};

class World : host::TraceSink {
public:
    struct Inside {
        int call; // the nth platform call from the first request on
        Event event;
    };

    World() {
        m_phone.local->contacts = localPeople;
        m_phone.remote->contacts = remotePeople;
        m_phone.root.write("config/data/before", sourceListOf(listBefore));
        m_phone.root.write("config/data/after", sourceListOf(listAfter));
        m_phone.phone.setTrace(this);
        m_phone.phone.setInterruption([this](std::string_view function) { onCall(function); });
        for (std::size_t i = 0; i < 2; ++i) {
            m_screens[i].onPage = [this, i] { m_pages.emplace_back(i, m_screens[i].pages.back()); };
        }
    }

    ~World() override {
        m_phone.phone.setInterruption(nullptr);
        m_phone.phone.setTrace(nullptr);
    }

    // One run: these events one after another, and others inside their platform calls. False when there were not so
    // many calls.
    bool run(const Beginning& beginning, const std::vector<Event>& events, std::vector<Inside> inside) {
        const auto changes = [](Event event) { return event == Event::reconfigure || event == Event::stop; };
        begin(beginning,
              std::any_of(events.begin(), events.end(), changes) ||
                  std::any_of(inside.begin(), inside.end(), [&](const Inside& each) { return changes(each.event); }));
        m_inside = std::move(inside);
        request(m_firstKey, 0);
        for (const Event event : events) {
            happen(event);
        }
        settle();
        const bool reached = m_inside.empty();
        m_inside.clear();
        checkPages();
        checkNextSearch();
        if (m_list != listBefore) {
            NS_WS::CWideseekController::ReleaseInstance();
            EXPECT_TRUE(host::Phone::outstanding().empty()) << m_story << ": not everything was given back";
        }
        return reached;
    }

private:
    struct Request {
        std::string key;
        std::size_t screen = 0;
        int count = 0;            // of rows, by which its pages are known
        std::size_t sent = 0;     // pages when it was handed over
        std::size_t answered = 0; // LDAP answers then
    };

    struct Parting { // a detach, or a stop from everybody
        std::optional<std::size_t> screen;
        std::size_t sent = 0;
        std::size_t requests = 0;

        bool concerns(std::size_t who) const { return !screen || *screen == who; }
    };

    // changes: the source list is read again in this run.
    void begin(const Beginning& beginning, bool changes) {
        m_story = std::string("before: ") + (beginning.before ? beginning.before : "-") + ", first: " + beginning.first;
        m_firstKey = beginning.first;
        m_requests.clear();
        m_partings.clear();
        m_pages.clear();
        m_sent = m_answered = 0;
        m_lastCount = 20;
        m_phone.log.clear();
        m_phone.local->asked.clear();
        m_phone.ldap->asked.clear();
        setList(listBefore);
        Wideseek_ResetKey();
        if (beginning.before) {
            request(beginning.before, 0);
            settle();
        }
        setList(changes ? listAfter : listBefore);
        m_calls = 0;
    }

    // Both lists lie ready, and a link says which one is read: making a file takes longer than a run.
    void setList(const std::vector<std::string>& ids) {
        const std::filesystem::path folder = m_phone.root.path() / "config/data";
        if (m_list != ids) {
            m_list = ids;
            std::filesystem::remove(folder / "wideseek.xml");
            std::filesystem::create_hard_link(folder / (ids == listBefore ? "before" : "after"),
                                              folder / "wideseek.xml");
        }
    }

    // ---- what is followed ----

    void onTrace(const host::TraceEvent& event) override {
        m_sent += event.kind == host::TraceKind::pageSent ? 1U : 0U;
        m_answered += event.kind == host::TraceKind::sourceAnswered && event.source == "LDAP" ? 1U : 0U;
        m_queued += event.kind == host::TraceKind::requestQueued ? 1 : 0;
        if (event.kind == host::TraceKind::requestStarted) {
            --(m_queuedForStopped > 0 ? m_queuedForStopped : m_queued);
        }
    }

    void onCall(std::string_view function) {
        if (m_handingOver && function == "TaskAction_ExecAction") {
            handedOver(*std::exchange(m_handingOver, std::nullopt));
        }
        ++m_calls;
        while (!m_inside.empty() && m_inside.front().call == m_calls) {
            const Event event = m_inside.front().event;
            m_inside.erase(m_inside.begin());
            if (isPossible(event, function)) {
                m_story += ", in " + std::string(function);
                happen(event);
            }
        }
    }

    // False for what another thread cannot do in the middle of this call because it would wait until the call is over;
    // that order is the one in which the event comes later.
    bool isPossible(Event event, std::string_view function) const {
        if (function == "SendMessageToCallingThread") {
            // Pages are posted with a lock held that all but LDAP take.
            return event == Event::ldapAnswers;
        }
        // A stop waits for callers inside the search, and, when nothing else keeps the search alive, for the answer or
        // the expiry that is being worked.
        return event != Event::stop || (!m_inCaller && (m_working == "request" || m_queued > 0));
    }

    void handedOver(Request request) {
        request.sent = m_sent;
        request.answered = m_answered;
        m_requests.push_back(std::move(request));
    }

    // ---- what happens ----

    void request(const std::string& key, std::size_t screen) {
        const bool nested = !m_working.empty() || m_inCaller;
        Wideseek_PreInit(); // callers that need a controller wait while it is made: nobody comes in
        const Request asked{key, screen, ++m_lastCount, 0, 0};
        nested ? handedOver(asked) : void(m_handingOver = asked);
        const bool outer = std::exchange(m_inCaller, true);
        EXPECT_TRUE(Wideseek_SearchUnion(key, 0, asked.count, &m_screens[screen]));
        m_inCaller = outer;
    }

    void happen(Event event) {
        const auto index = static_cast<std::size_t>(event);
        m_story += std::string(", ") + eventNames[index];
        if (event <= Event::sameKeyElsewhere) {
            const std::array<std::string, 5> keys = {m_firstKey, m_firstKey + "1", "9", "", m_firstKey};
            request(keys[index], event == Event::sameKeyElsewhere ? 1 : 0);
        } else if (event == Event::reset) {
            Wideseek_ResetKey();
        } else if (event == Event::reconfigure) {
            ETL_MsgQueueHelper::msgObject message{0x10007, 52};
            NS_WS::CWideseekController::OnMessage(message);
        } else if (event == Event::detach || event == Event::detachElsewhere) {
            const std::size_t screen = event == Event::detach ? 0 : 1;
            Wideseek_ResetCallBack(&m_screens[screen]);
            m_partings.push_back({screen, m_sent, m_requests.size()});
        } else if (event == Event::stop) {
            m_queuedForStopped += std::exchange(m_queued, 0);
            NS_WS::CWideseekController::ReleaseInstance();
            m_partings.push_back({std::nullopt, m_sent, m_requests.size()});
        } else if (event == Event::ldapAnswers && m_phone.ldap->isAsking()) {
            std::vector<Contact> people = ldapPeople;
            std::erase_if(
                people, [&](const Contact& person) { return rowsFor(m_phone.ldap->asked.back(), {{person}}).empty(); });
            m_phone.ldap->answer(people);
        } else if (event == Event::timePasses) {
            m_phone.phone.kernel().moveTime(100ms);
        } else if (event == Event::work) {
            for (const host::ReadyMessage& message : m_phone.phone.kernel().ready()) {
                if (message.thread == host::Kernel::searchThread) {
                    return work(message);
                }
            }
        }
    }

    void work(const host::ReadyMessage& message) {
        m_working = message.label;
        m_phone.phone.kernel().step(message.sequence);
        m_working.clear();
    }

    // Everything that is under way comes to its end; LDAP answers last.
    void settle() {
        for (int round = 0; round < 2 || m_phone.ldap->isAsking(); ++round) {
            if (round > 1) {
                happen(Event::ldapAnswers);
            }
            for (auto ready = m_phone.phone.kernel().ready(); !ready.empty(); ready = m_phone.phone.kernel().ready()) {
                work(ready.front());
            }
            m_phone.phone.kernel().moveTime(1s);
        }
    }

    // ---- what must hold ----

    void checkPages() const {
        ASSERT_EQ(m_pages.size(), m_sent) << m_story;
        std::vector<std::size_t> pagesOf(m_requests.size());
        for (std::size_t i = 0; i < m_pages.size(); ++i) {
            const std::size_t screen = m_pages[i].first;
            const WideseekListData& page = m_pages[i].second;
            const auto at = std::find_if(m_requests.begin(), m_requests.end(),
                                         [&](const Request& each) { return each.count == page.iSearchCount; });
            ASSERT_NE(at, m_requests.end()) << m_story;
            const auto index = static_cast<std::size_t>(at - m_requests.begin());
            ++pagesOf[index];
            EXPECT_EQ(page.strKey, at->key) << m_story << ": key and position of two requests";
            EXPECT_EQ(screen, at->screen) << m_story << ": a page that another one asked for";
            EXPECT_TRUE(at + 1 == m_requests.end() || i < (at + 1)->sent)
                << m_story << ": a page of an outranked request";
            for (const Parting& parting : m_partings) {
                EXPECT_FALSE(parting.concerns(screen) && index < parting.requests && i >= parting.sent)
                    << m_story << ": a page after a detach or a stop";
            }
            checkRows(page);
        }
        for (std::size_t i = 0; i < m_requests.size(); ++i) {
            EXPECT_LE(pagesOf[i], 1 + m_answered - m_requests[i].answered) << m_story << ": a page too many";
        }
        const bool left = std::any_of(m_partings.begin(), m_partings.end(), [&](const Parting& parting) {
            return parting.requests == m_requests.size() && parting.concerns(m_requests.back().screen);
        });
        EXPECT_TRUE(left || pagesOf.back() >= 1) << m_story << ": the newest request got no page";
    }

    void checkRows(const WideseekListData& page) const {
        const std::set<std::string> least = rowsFor(page.strKey, {localPeople});
        const std::set<std::string> most = rowsFor(page.strKey, {localPeople, remotePeople, ldapPeople});
        const std::set<std::string> rows = rowsIn(page);
        EXPECT_EQ(rows.size(), page.listItem.size()) << m_story << ": listed twice in " << rowsOf(page);
        EXPECT_EQ(static_cast<int>(rows.size()), page.iTotalCount) << m_story;
        EXPECT_TRUE(std::includes(rows.begin(), rows.end(), least.begin(), least.end()) &&
                    std::includes(most.begin(), most.end(), rows.begin(), rows.end()))
            << m_story << ": missing or wrong rows: " << rowsOf(page);
    }

    static std::set<std::string> rowsIn(const WideseekListData& page) {
        std::set<std::string> rows;
        for (const WideseekItemData& row : page.listItem) {
            rows.insert(row.strName + " " + row.strNumber);
        }
        return rows;
    }

    // After all that, a key finds what the sources of the list hold.
    void checkNextSearch() {
        NS_WS::WideseekCfgListData list;
        NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list);
        request("51", 0);
        settle();
        const bool remote = list.listItem.size() == listAfter.size();
        EXPECT_EQ(rowsIn(m_pages.back().second),
                  rowsFor("51", {localPeople, ldapPeople, remote ? remotePeople : std::vector<Contact>()}))
            << m_story << ", next search";
        EXPECT_EQ(m_pages.back().second.iSearchCount, m_lastCount) << m_story << ", next search";
    }

    SteppedPhone m_phone{listBefore};
    std::array<Screen, 2> m_screens;
    std::vector<std::string> m_list = listBefore; // in the file
    std::string m_story;
    std::string m_firstKey;
    int m_lastCount = 0;
    std::vector<Inside> m_inside;
    int m_calls = 0;
    std::vector<Request> m_requests;
    std::optional<Request> m_handingOver; // not handed over yet
    std::vector<Parting> m_partings;
    std::vector<std::pair<std::size_t, WideseekListData>> m_pages; // by screen
    std::size_t m_sent = 0;
    std::size_t m_answered = 0;
    int m_queued = 0;
    int m_queuedForStopped = 0;
    bool m_inCaller = false;
    std::string m_working; // the label of the message being worked
};

TEST(Orders, OfWholeMessages) {
    World world;
    int runs = 0;
    for (const Beginning& beginning : beginnings) {
        for (int second = 0; second <= static_cast<int>(Event::sameKeyElsewhere); ++second) {
            for (int other = static_cast<int>(Event::reset); other <= static_cast<int>(Event::stop); ++other) {
                std::vector<Event> events = {static_cast<Event>(second),
                                             static_cast<Event>(other),
                                             Event::ldapAnswers,
                                             Event::timePasses,
                                             Event::work,
                                             Event::work};
                do {
                    world.run(beginning, events, {});
                    ++runs;
                    ASSERT_FALSE(HasFailure());
                } while (std::next_permutation(events.begin(), events.end()));
            }
        }
    }
    RecordProperty("runs", runs);
}

// A newer request and any other event, at each two platform calls that a search makes, whether LDAP is late or not.
TEST(Orders, OfPlatformCallsInsideMessages) {
    World world;
    int runs = 0;
    const std::vector<std::vector<Event>> courses = {
        {Event::work, Event::timePasses, Event::work, Event::ldapAnswers, Event::work},
        {Event::work, Event::ldapAnswers, Event::work},
    };
    constexpr int interruptions = static_cast<int>(Event::ldapAnswers) + 1;
    for (int i = 0; i < interruptions * interruptions * 8; ++i) {
        const Beginning& beginning = beginnings[static_cast<std::size_t>(i % 4)];
        const std::vector<Event>& course = courses[static_cast<std::size_t>(i / 4 % 2)];
        const auto first = static_cast<Event>(i / 8 % interruptions);
        const auto second = static_cast<Event>(i / 8 / interruptions);
        const bool ldapIsAwaited = beginning.before == nullptr || beginning.first > std::string(beginning.before);
        bool reached = (first < Event::reset || second < Event::reset) && (course == courses[0] || ldapIsAwaited);
        for (int call = 1; reached; ++call) {
            bool reachedToo = true;
            for (int later = call; reachedToo; ++later, ++runs) {
                reachedToo = world.run(beginning, course, {{call, first}, {later, second}});
                reached = later > call || reachedToo;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    RecordProperty("runs", runs);
}

} // namespace
