// All orders of a few events, for one source that answers at once, LDAP, the timer and two requests: between whole
// messages, and between the platform calls inside one, where another thread comes in. Whatever the order, a page holds
// rows of its own request, goes to who asked, comes once, and not after a newer request, a detach or a stop.

#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using namespace test;

const std::vector<std::string> listBefore = {"local_directory_search", "ldap_search"};
const std::vector<std::string> listAfter = {"ldap_search", "local_directory_search", "remote_directory_search"};

// No name contains a 5 or a 9 in its keypad form.
const std::vector<Contact> localPeople = {{"Ann", {"51"}}, {"Bob", {"5"}}, {"Gus", {"9"}}, {"Cem", {"8"}}};
const std::vector<Contact> remotePeople = {{"Eva", {"515"}}, {"Ann", {"51"}}};
const std::vector<Contact> ldapPeople = {{"Mia", {"511"}}, {"Dora", {"59"}}, {"Bob", {"5"}}};

std::vector<Contact> matching(const std::vector<Contact>& people, const std::string& key) {
    std::vector<Contact> found;
    for (const Contact& person : people) {
        for (const std::string& number : person.numbers) {
            if (number.find(key) != std::string::npos) {
                found.push_back({person.name, {number}});
            }
        }
    }
    return found;
}

// ---- what can happen ----

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

const char* const eventNames[] = {"same key",     "longer key",  "other key", "empty key",        "same key elsewhere",
                                  "reset",        "reconfigure", "detach",    "detach elsewhere", "stop",
                                  "LDAP answers", "100 ms pass", "work"};

const std::vector<Event> interruptions = {Event::sameKey,     Event::longerKey,        Event::otherKey,
                                          Event::emptyKey,    Event::sameKeyElsewhere, Event::reset,
                                          Event::reconfigure, Event::detach,           Event::detachElsewhere,
                                          Event::stop,        Event::ldapAnswers};

// How the phone stands when the first request is handed over.
struct Beginning {
    const char* before; // searched for already, with LDAP's answer; null: nothing
    const char* first;
};

const std::vector<Beginning> beginnings = {{nullptr, "5"}, {"5", "51"}, {"5", "5"}, {"5", ""}};

class World : host::TraceSink {
public:
    World() {
        m_phone.local->contacts = localPeople;
        m_phone.remote->contacts = remotePeople;
        m_phone.root.write("config/data/before", sourceListOf(listBefore));
        m_phone.root.write("config/data/after", sourceListOf(listAfter));
        m_phone.phone.setTrace(this);
        m_phone.phone.setInterruption([this](std::string_view function) { onCall(function); });
        for (int i = 0; i < 2; ++i) {
            m_screens[i].onPage = [this, i] { onPage(i); };
        }
    }

    ~World() override {
        m_phone.phone.setInterruption(nullptr);
        m_phone.phone.setTrace(nullptr);
    }

    // One run: the events in this order, and some of them inside the nth platform call from the first request on.
    struct Inside {
        int call;
        Event event;
    };

    // False when the run made no such calls, so that greater numbers need not be tried.
    bool run(const Beginning& beginning, const std::vector<Event>& events, std::vector<Inside> inside) {
        m_story = std::string("before: ") + (beginning.before ? beginning.before : "-") + ", first: " + beginning.first;
        const auto changes = [](Event event) { return event == Event::reconfigure || event == Event::stop; };
        begin(beginning,
              std::any_of(events.begin(), events.end(), changes) ||
                  std::any_of(inside.begin(), inside.end(), [&](const Inside& i) { return changes(i.event); }));
        m_inside = std::move(inside);
        m_firstKey = beginning.first;
        m_calls = 0;
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
        int screen = 0;
        int count = 0;            // of rows, by which its pages are known
        std::size_t sent = 0;     // pages when it was handed over
        std::size_t answered = 0; // LDAP answers
    };

    struct Parting { // a detach or a stop
        int screen = 0;
        std::size_t sent = 0;
        std::size_t requests = 0;
    };

    struct Page {
        int screen = 0;
        WideseekListData data;
    };

    static constexpr int everybody = -1;

    // changes: the list is read again in this run.
    void begin(const Beginning& beginning, bool changes) {
        m_requests.clear();
        m_partings.clear();
        m_pages.clear();
        m_sent = m_answered = 0;
        m_lastCount = 20;
        m_phone.log.clear();
        m_phone.local->asked.clear();
        m_phone.ldap->asked.clear();
        for (Screen& screen : m_screens) {
            screen.pages.clear();
        }
        setList(listBefore);
        Wideseek_ResetKey();
        if (beginning.before) {
            request(beginning.before, 0);
            settle();
        }
        if (changes) {
            setList(listAfter);
        }
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
        if (event.kind == host::TraceKind::requestQueued) {
            ++m_queued;
        } else if (event.kind == host::TraceKind::requestStarted) {
            --(m_queuedForStopped > 0 ? m_queuedForStopped : m_queued);
        }
    }

    void onPage(int screen) { m_pages.push_back({screen, m_screens[screen].pages.back()}); }

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

    // What another thread cannot do in the middle of this call, because it would wait until the call is over: then the
    // order is the one in which the event comes later.
    bool isPossible(Event event, std::string_view function) const {
        if (event == Event::ldapAnswers) {
            return true;
        }
        if (function == "SendMessageToCallingThread") {
            return false; // every other event takes the lock that is held while a page is posted
        }
        if (event == Event::stop) {
            // A stop waits for callers inside the search, and, when nothing else keeps the search alive, for the answer
            // or the expiry that is being worked.
            return !m_inCaller && (m_working == "request" || m_queued > 0);
        }
        return true;
    }

    // ---- what happens ----

    void request(const std::string& key, int screen) {
        const Request request{key, screen, ++m_lastCount, 0, 0};
        const bool nested = m_working != "" || m_inCaller;
        Wideseek_PreInit(); // nobody comes in while it is made
        if (nested) {
            handedOver(request);
        } else {
            m_handingOver = request;
        }
        const bool outer = std::exchange(m_inCaller, true);
        EXPECT_TRUE(Wideseek_SearchUnion(key, 0, request.count, &m_screens[screen]));
        m_inCaller = outer;
    }

    void handedOver(Request request) {
        request.sent = m_sent;
        request.answered = m_answered;
        m_requests.push_back(request);
    }

    void part(int screen) { m_partings.push_back({screen, m_sent, m_requests.size()}); }

    void happen(Event event) {
        m_story += std::string(", ") + eventNames[static_cast<int>(event)];
        switch (event) {
        case Event::sameKey:
            return request(m_firstKey, 0);
        case Event::longerKey:
            return request(m_firstKey + "1", 0);
        case Event::otherKey:
            return request("9", 0);
        case Event::emptyKey:
            return request("", 0);
        case Event::sameKeyElsewhere:
            return request(m_firstKey, 1);
        case Event::reset:
            return Wideseek_ResetKey();
        case Event::reconfigure: {
            ETL_MsgQueueHelper::msgObject message{0x10007, 52};
            NS_WS::CWideseekController::OnMessage(message);
            return;
        }
        case Event::detach:
        case Event::detachElsewhere: {
            const int screen = event == Event::detach ? 0 : 1;
            Wideseek_ResetCallBack(&m_screens[screen]);
            return part(screen);
        }
        case Event::stop:
            m_queuedForStopped += std::exchange(m_queued, 0);
            NS_WS::CWideseekController::ReleaseInstance();
            return part(everybody);
        case Event::ldapAnswers:
            if (m_phone.ldap->isAsking()) {
                m_phone.ldap->answer(matching(ldapPeople, m_phone.ldap->asked.back()));
            }
            return;
        case Event::timePasses:
            return m_phone.phone.kernel().moveTime(100ms);
        case Event::work:
            return work();
        }
    }

    void work() {
        for (const host::ReadyMessage& message : m_phone.phone.kernel().ready()) {
            if (message.thread == host::Kernel::searchThread) {
                return work(message);
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
        const auto workAll = [this] {
            for (auto ready = m_phone.phone.kernel().ready(); !ready.empty(); ready = m_phone.phone.kernel().ready()) {
                work(ready.front());
            }
        };
        workAll();
        m_phone.phone.kernel().moveTime(1s);
        workAll();
        while (m_phone.ldap->isAsking()) {
            happen(Event::ldapAnswers);
            workAll();
        }
    }

    // ---- what must hold ----

    void checkPages() const {
        std::vector<std::size_t> pagesOf(m_requests.size());
        ASSERT_EQ(m_pages.size(), m_sent) << m_story;
        for (std::size_t i = 0; i < m_pages.size(); ++i) {
            const Page& page = m_pages[i];
            const auto at = std::find_if(m_requests.begin(), m_requests.end(),
                                         [&](const Request& each) { return each.count == page.data.iSearchCount; });
            ASSERT_NE(at, m_requests.end()) << m_story;
            const Request& request = *at;
            const auto index = static_cast<std::size_t>(at - m_requests.begin());
            ++pagesOf[index];
            EXPECT_EQ(page.data.strKey, request.key) << m_story << ": key and position of two requests";
            EXPECT_EQ(page.screen, request.screen) << m_story << ": a page of another's request";
            checkRows(page.data);
            for (std::size_t newer = index + 1; newer < m_requests.size(); ++newer) {
                EXPECT_LT(i, m_requests[newer].sent) << m_story << ": a page of a request that is outranked";
            }
            for (const Parting& parting : m_partings) {
                const bool concerned = parting.screen == everybody || parting.screen == page.screen;
                EXPECT_FALSE(concerned && index < parting.requests && i >= parting.sent)
                    << m_story << ": a page after a detach or a stop";
            }
        }
        for (std::size_t i = 0; i < m_requests.size(); ++i) {
            EXPECT_LE(pagesOf[i], 1 + m_answered - m_requests[i].answered) << m_story << ": a page too many";
        }
        const Request& last = m_requests.back();
        const bool left = std::any_of(m_partings.begin(), m_partings.end(), [&](const Parting& parting) {
            return parting.requests == m_requests.size() &&
                   (parting.screen == everybody || parting.screen == last.screen);
        });
        EXPECT_TRUE(left || pagesOf.back() >= 1) << m_story << ": the newest request got no page";
    }

    void checkRows(const WideseekListData& page) const {
        std::set<std::string> rows;
        for (const WideseekItemData& row : page.listItem) {
            EXPECT_TRUE(rows.insert(row.strName + row.strNumber).second)
                << m_story << ": listed twice " << rowsOf(page);
            EXPECT_NE(row.strNumber.find(page.strKey), std::string::npos)
                << m_story << ": another key's row " << rowsOf(page);
        }
        EXPECT_EQ(page.iTotalCount, static_cast<int>(page.listItem.size())) << m_story;
        for (const Contact& person :
             page.strKey.empty() ? std::vector<Contact>() : matching(localPeople, page.strKey)) {
            EXPECT_EQ(rows.count(person.name + person.numbers[0]), 1U) << m_story << ": missing in " << rowsOf(page);
        }
        EXPECT_FALSE(page.strKey.empty() && !rows.empty()) << m_story;
    }

    // After all that, a key finds what the sources of the list hold.
    void checkNextSearch() {
        NS_WS::WideseekCfgListData list;
        NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list);
        const std::string key = "51";
        request(key, 0);
        settle();
        std::set<std::string> expected;
        for (const auto* people : {&localPeople, &ldapPeople, &remotePeople}) {
            if (people != &remotePeople || list.listItem.size() == listAfter.size()) {
                for (const Contact& person : matching(*people, key)) {
                    expected.insert(person.name + " " + person.numbers[0]);
                }
            }
        }
        std::set<std::string> found;
        for (const WideseekItemData& row : m_pages.back().data.listItem) {
            found.insert(row.strName + " " + row.strNumber);
        }
        EXPECT_EQ(found, expected) << m_story << ", next search";
        EXPECT_EQ(m_pages.back().data.strKey, key) << m_story;
    }

    SteppedPhone m_phone{listBefore};
    Screen m_screens[2];
    std::vector<std::string> m_list = listBefore; // in the file
    std::string m_story;
    std::string m_firstKey;
    int m_lastCount = 0;
    std::vector<Inside> m_inside;
    int m_calls = 0;
    std::vector<Request> m_requests;
    std::optional<Request> m_handingOver; // not handed over yet
    std::vector<Parting> m_partings;
    std::vector<Page> m_pages;
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
    const std::vector<Event> others = {Event::reset, Event::reconfigure, Event::detach, Event::detachElsewhere,
                                       Event::stop};
    for (const Beginning& beginning : beginnings) {
        for (int second = 0; second < 5; ++second) {
            for (const Event other : others) {
                std::vector<Event> events = {static_cast<Event>(second), other,       Event::ldapAnswers,
                                             Event::timePasses,          Event::work, Event::work};
                std::sort(events.begin(), events.end());
                do {
                    world.run(beginning, events, {});
                    ++runs;
                    if (HasFailure()) {
                        return;
                    }
                } while (std::next_permutation(events.begin(), events.end()));
            }
        }
    }
    RecordProperty("runs", runs);
}

// A newer request and any other event, at each two platform calls that the work makes.
TEST(Orders, OfPlatformCallsInsideMessages) {
    World world;
    int runs = 0;
    const std::vector<std::vector<Event>> courses = {
        {Event::work, Event::timePasses, Event::work, Event::ldapAnswers, Event::work},
        {Event::work, Event::ldapAnswers, Event::work},
    };
    for (const Beginning& beginning : beginnings) {
        for (const auto& course : courses) {
            for (const Event first : interruptions) {
                for (const Event second : interruptions) {
                    bool reached = first < Event::reset || second < Event::reset; // one of them is a request
                    for (int call = 1; reached; ++call) {
                        bool reachedToo = true;
                        for (int later = call; reachedToo; ++later) {
                            reachedToo = world.run(beginning, course, {{call, first}, {later, second}});
                            reached = later > call || reachedToo;
                            ++runs;
                            if (HasFailure()) {
                                return;
                            }
                        }
                    }
                }
            }
        }
    }
    RecordProperty("runs", runs);
}

} // namespace
