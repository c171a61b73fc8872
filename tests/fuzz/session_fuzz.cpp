// A person at the search box, and everything that can go wrong meanwhile: each byte is one thing that happens. No
// crash, no leak, no page for a detached screen, and each page belongs together (KeyedRows.h).
//
//   <  erased              >  the next page     =  the same again
//   .  what is due runs    ~  100 ms pass       a x  LDAP answers, or fails to
//   r  the key is reset    s  stop and start    d  the screen leaves and comes back
//   f  the next call of a source fails          m  the next allocation fails
//   c C  another source list, or none that can be read
//   any other but the blank: typed

#include "tests/fuzz/Fuzz.h"
#include "tests/support/KeyedRows.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace test;

class Person {
public:
    Person() : m_phone({"local_directory_search", "ldap_search", "remote_directory_search"}) {
        m_phone.phone.setSource(host::Source::localDirectory, m_failing);
        m_phone.phone.setSource(host::Source::remoteDirectory, std::make_shared<KeyedSource>('2'));
        m_phone.phone.setRecentCalls(std::make_shared<KeyedCalls>());
        m_phone.phone.setConfig("FeaturesRecentCallEnable", 1);
    }

    ~Person() {
        host::Phone::failAllocation(0);
        m_phone.run(1s);
        leave();
    }

    void happen(char what) {
        switch (what) {
        case '<':
            m_key.resize(m_key.size() - (m_key.empty() ? 0 : 1));
            return request(0);
        case '>':
            return request(m_from + 3);
        case '=':
            return request(m_from);
        case '.':
            return m_phone.run();
        case '~':
            return m_phone.run(100ms);
        case 'a':
        case 'x':
            return answer(what == 'a');
        case 'r':
            return Wideseek_ResetKey();
        case 'd':
            leave();
            m_screen.emplace();
            return;
        case 's':
            NS_WS::CWideseekController::ReleaseInstance();
            Wideseek_PreInit();
            return;
        case 'c':
        case 'C':
            m_phone.setSourceList(what == 'C' ? "<" : sourceListOf({"ldap_search", "remote_directory_search"}));
            return m_phone.phone.announceConfigChange(52);
        case 'f':
            m_failing->failIn = 1;
            return;
        case 'm':
            return host::Phone::failAllocation(1);
        default:
            if (what != ' ') {
                m_key += what;
                request(0);
            }
        }
    }

private:
    void request(int from) {
        m_from = from;
        const int count = static_cast<int>(m_key.size() % 5);
        Wideseek_SearchUnion(typedFor(m_key, from, count), from, count, &*m_screen);
    }

    void answer(bool succeeds) {
        if (m_phone.ldap->isAsking()) {
            const std::string& key = m_phone.ldap->asked.back();
            m_phone.ldap->answer({{"k:" + key, {key + "31", "", key + "32"}}}, succeeds);
        }
    }

    void leave() {
        Wideseek_ResetCallBack(&*m_screen);
        for (const WideseekListData& page : m_screen->pages) {
            EXPECT_EQ(judge(page), "");
        }
    }

    SteppedPhone m_phone;
    const std::shared_ptr<KeyedSource> m_failing = std::make_shared<KeyedSource>('1');
    std::optional<Screen> m_screen{std::in_place};
    std::string m_key;
    int m_from = 0;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // A failed expectation ends the process with the input that made it fail.
    testing::GTEST_FLAG(throw_on_failure) = true;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Person person;
    for (const char what : fuzz::textOf(data, std::min<std::size_t>(size, 200))) {
        person.happen(what);
    }
    return 0;
}
