// All orders of a few events, for one source that answers at once, LDAP, the timer and two requests: between whole
// messages, and between the platform calls inside one, where another thread comes in. Whatever the order, a page holds
// rows of its own request, goes to who asked, comes once, and not after a newer request, a detach or a stop.

#include "tests/support/SteppedPhone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace {

using namespace test;

const std::vector<std::string> listBefore = {localId, ldapId};
const std::vector<std::string> listAfter = {ldapId, localId, remoteId};

// No name contains a 5 or a 9 in its keypad form.
const std::vector<Contact> localPeople = {{"Ann", {"51"}}, {"Bob", {"5"}}, {"Gus", {"9"}}, {"Cem", {"8"}}};
const std::vector<Contact> remotePeople = {{"Eva", {"515"}}, {"Ann", {"51"}}};
const std::vector<Contact> ldapPeople = {{"Mia", {"511"}}, {"Dora", {"59"}}, {"Bob", {"5"}}};

// What key finds at these people.
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

using Event = std::string_view;
const std::vector<Event> requests = {"same key", "longer key", "other key", "empty key", "same key elsewhere"};
const std::vector<Event> deeds = {"reset", "reconfigure", "detach", "detach elsewhere", "stop"};
constexpr Event ldapAnswers = "LDAP answers"; // its message is queued
constexpr Event timePasses = "time passes";   // 100 ms
constexpr Event works = "work";               // the search thread works what is first in its queue

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
        m_phone.phone.setInterruption([this](host::PlatformCall call) {
            if (call.function != host::PlatformFunction::registerHandler) { // between two searches
                onCall(call.function);
            }
        });
        for (std::size_t i = 0; i < 2; ++i) {
            m_screens[i].onPage = [this, i] {
                m_pages.at(m_arrived).screen = i;
                m_pages.at(m_arrived++).data = m_screens[i].pages.back();
            };
        }
    }

    ~World() override {
        m_phone.phone.setInterruption(nullptr);
        m_phone.phone.setTrace(nullptr);
    }

    // One run: these events one after another, and others inside their platform calls. False when there were not so
    // many calls.
    bool run(const Beginning& beginning, const std::vector<Event>& events, std::vector<Inside> inside) {
        std::vector<Event> all = events;
        for (const Inside& each : inside) {
            all.push_back(each.event);
        }
        begin(beginning,
              std::count(all.begin(), all.end(), "reconfigure") + std::count(all.begin(), all.end(), "stop"));
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
        std::size_t answered = 0; // LDAP answers when it was handed over
        bool left = false;        // its screen was detached since, or the search stopped
        std::size_t pages = 0;
    };

    struct Page {
        std::size_t newest = 0;        // request when it was sent
        std::array<bool, 2> left = {}; // whether the newest request of each screen had left then
        std::size_t screen = 0;        // that it came to
        WideseekListData data{};
    };

    // changes: how often the source list is read again in this run.
    void begin(const Beginning& beginning, std::ptrdiff_t changes) {
        m_story = std::string("before: ") + (beginning.before ? beginning.before : "-") + ", first: " + beginning.first;
        m_firstKey = beginning.first;
        m_requests.clear();
        m_pages.clear();
        m_arrived = m_answered = 0;
        m_lastCount = 20;
        m_phone.log.clear();
        setList(listBefore);
        Wideseek_ResetKey();
        if (beginning.before) {
            request(beginning.before, 0);
            settle();
        }
        setList(changes > 0 ? listAfter : listBefore);
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
        if (event.kind == host::TraceKind::pageSent) {
            m_pages.push_back({.newest = m_requests.size() - 1});
            for (const Request& request : m_requests) {
                m_pages.back().left.at(request.screen) = request.left;
            }
        }
        m_answered += event.kind == host::TraceKind::sourceAnswered && event.source == "LDAP" ? 1U : 0U;
        m_queued += event.kind == host::TraceKind::requestQueued ? 1 : 0;
        m_queued -= event.kind == host::TraceKind::requestStarted && m_queued > 0 ? 1 : 0;
    }

    void onCall(host::PlatformFunction function) {
        if (m_handingOver && function == host::PlatformFunction::execAction) {
            m_requests.push_back(*std::exchange(m_handingOver, std::nullopt));
            m_requests.back().answered = m_answered;
        }
        ++m_calls;
        while (!m_inside.empty() && m_inside.front().call == m_calls) {
            const Event event = m_inside.front().event;
            m_inside.erase(m_inside.begin());
            if (isPossible(event, function)) {
                m_story += ", in call " + std::to_string(m_calls);
                happen(event);
            }
        }
    }

    // False for what another thread cannot do in the middle of this call because it would wait until the call is over;
    // that order is the one in which the event comes later.
    bool isPossible(Event event, host::PlatformFunction function) const {
        if (function == host::PlatformFunction::sendToThread) {
            // Pages are posted with a lock held that all but LDAP take.
            return event == ldapAnswers;
        }
        // A stop waits for callers inside the search, and, when nothing else keeps the search alive, for the answer or
        // the expiry that is being worked.
        return event != "stop" || (!m_inCaller && (m_working == "request" || m_queued > 0));
    }

    // ---- what happens ----

    void request(const std::string& key, std::size_t screen) {
        const bool nested = !m_working.empty() || m_inCaller;
        Wideseek_PreInit(); // callers that need a controller wait while it is made: nobody comes in
        const Request asked{key, screen, ++m_lastCount, m_answered};
        nested ? m_requests.push_back(asked) : void(m_handingOver = asked); // calls of a nested one are not interrupted
        const bool outer = std::exchange(m_inCaller, true);
        EXPECT_TRUE(Wideseek_SearchUnion(key, 0, asked.count, &m_screens[screen]));
        m_inCaller = outer;
    }

    void happen(Event event) {
        m_story.append(", ").append(event);
        const auto asked = std::find(requests.begin(), requests.end(), event);
        if (asked != requests.end()) {
            const std::array<std::string, 5> keys = {m_firstKey, m_firstKey + "1", "9", "", m_firstKey};
            request(keys[static_cast<std::size_t>(asked - requests.begin())], event.ends_with("elsewhere") ? 1 : 0);
        } else if (event == "reset") {
            Wideseek_ResetKey();
        } else if (event == "reconfigure") {
            ETL_MsgQueueHelper::msgObject message{ETL_MsgQueueHelper::MSG_CONFIG_CHANGED,
                                                  ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK};
            NS_WS::CWideseekController::OnMessage(message);
        } else if (event.starts_with("detach")) {
            const std::size_t screen = event == "detach" ? 0 : 1;
            Wideseek_ResetCallBack(&m_screens[screen]);
            leave([&](const Request& each) { return each.screen == screen; });
        } else if (event == "stop") {
            m_queued = 0;
            NS_WS::CWideseekController::ReleaseInstance();
            leave([](const Request&) { return true; });
        } else if (event == ldapAnswers && m_phone.ldap->isAsking()) {
            std::vector<Contact> people = ldapPeople;
            std::erase_if(
                people, [&](const Contact& person) { return rowsFor(m_phone.ldap->asked.back(), {{person}}).empty(); });
            m_phone.ldap->answer(people);
        } else if (event == timePasses) {
            m_phone.phone.kernel().moveTime(100ms);
        } else if (event == works) {
            const auto ready = m_phone.phone.kernel().ready();
            const auto first = std::find_if(ready.begin(), ready.end(), [](const host::ReadyMessage& message) {
                return message.thread == host::Kernel::searchThread;
            });
            first == ready.end() ? void() : work(*first);
        }
    }

    void leave(const std::function<bool(const Request&)>& which) {
        for (Request& each : m_requests) {
            each.left = each.left || which(each);
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
                happen(ldapAnswers);
            }
            for (auto ready = m_phone.phone.kernel().ready(); !ready.empty(); ready = m_phone.phone.kernel().ready()) {
                work(ready.front());
            }
            m_phone.phone.kernel().moveTime(1s);
        }
    }

    // ---- what must hold ----

    void checkPages() {
        ASSERT_EQ(m_pages.size(), m_arrived) << m_story;
        for (const Page& page : m_pages) {
            Request& request = m_requests[page.newest];
            EXPECT_EQ(page.data.iSearchCount, request.count) << m_story << ": a page of an outranked request";
            EXPECT_EQ(page.data.strKey, request.key) << m_story << ": key and position of two requests";
            // When who asked last has left, a late answer's page goes to who asked before and waits for it still.
            EXPECT_TRUE(page.screen == request.screen || page.left.at(request.screen))
                << m_story << ": a page that another one asked for";
            EXPECT_FALSE(page.left.at(page.screen)) << m_story << ": a page after a detach or a stop";
            EXPECT_LE(++request.pages, 1 + m_answered - request.answered) << m_story << ": a page too many";
            checkRows(page.data);
        }
        EXPECT_TRUE(m_requests.back().left || m_requests.back().pages > 0) << m_story << ": no page for the newest one";
    }

    void checkRows(const WideseekListData& page) const {
        const std::set<std::string> least = rowsFor(page.strKey, {localPeople});
        const std::set<std::string> most = rowsFor(page.strKey, {localPeople, remotePeople, ldapPeople});
        const std::vector<std::string> list = rowsIn(page);
        const std::set<std::string> rows(list.begin(), list.end());
        EXPECT_EQ(rows.size(), list.size()) << m_story << ": listed twice in " << rowsOf(page);
        EXPECT_EQ(static_cast<int>(rows.size()), page.iTotalCount) << m_story;
        EXPECT_TRUE(std::includes(rows.begin(), rows.end(), least.begin(), least.end()) &&
                    std::includes(most.begin(), most.end(), rows.begin(), rows.end()))
            << m_story << ": missing or wrong rows: " << rowsOf(page);
    }

    // After all that, a key finds what the sources of the list hold.
    void checkNextSearch() {
        NS_WS::WideseekCfgListData list;
        NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list);
        request("51", 0);
        settle();
        const bool remote = list.listItem.size() == listAfter.size();
        const auto right = rowsFor("51", {localPeople, ldapPeople, remote ? remotePeople : std::vector<Contact>()});
        EXPECT_THAT(rowsIn(m_pages.back().data), testing::UnorderedElementsAreArray(right))
            << m_story << ", next search";
        EXPECT_EQ(m_pages.back().data.iSearchCount, m_lastCount) << m_story << ", next search";
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
    std::vector<Page> m_pages;            // as they were sent
    std::size_t m_arrived = 0;
    std::size_t m_answered = 0;
    int m_queued = 0;
    bool m_inCaller = false;
    std::string m_working; // the label of the message being worked
};

TEST(Orders, OfWholeMessages) {
    World world;
    int runs = 0;
    for (const Beginning& beginning : beginnings) {
        for (const Event request : requests) {
            for (const Event deed : deeds) {
                std::vector<Event> events = {request, deed, ldapAnswers, timePasses, works, works};
                std::sort(events.begin(), events.end());
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
    std::vector<Event> events = requests;
    events.insert(events.end(), deeds.begin(), deeds.end());
    events.push_back(ldapAnswers);
    const auto everywhere = [&](const Beginning& beginning, const std::vector<Event>& course, Event first,
                                Event second) {
        bool reached = true;
        for (int call = 1; reached && !HasFailure(); ++call) {
            bool reachedToo = true;
            for (int later = call; reachedToo && !HasFailure(); ++later, ++runs) {
                reachedToo = world.run(beginning, course, {{call, first}, {later, second}});
                reached = later > call || reachedToo;
            }
        }
    };
    for (const Beginning& beginning : beginnings) {
        const bool asksLdap = beginning.before == nullptr || beginning.first > std::string(beginning.before);
        for (std::size_t i = 0; i < events.size() * events.size(); ++i) {
            const std::size_t first = i / events.size();
            const std::size_t second = i % events.size();
            if (std::min(first, second) < requests.size()) {
                everywhere(beginning, {works, timePasses, works, ldapAnswers, works}, events[first], events[second]);
            }
            if (std::min(first, second) < requests.size() && asksLdap) {
                everywhere(beginning, {works, ldapAnswers, works}, events[first], events[second]);
            }
        }
    }
    RecordProperty("runs", runs);
}

} // namespace
