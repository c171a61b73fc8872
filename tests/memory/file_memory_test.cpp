// Every allocation of a source that reads files can fail, too. Whichever it is, the source fails and says why, and the
// next search finds its contacts.

#include "host/kernel/HeldLocks.h"
#include "host/kernel/Trace.h"
#include "tests/memory/FailingAllocations.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

// Counts without memory of its own.
struct Failures : host::TraceSink {
    int told = 0;
    int untold = 0;

    void onTrace(const host::TraceEvent& event) override {
        if (event.kind == host::TraceKind::sourceAnswered && event.failed) {
            ++(event.problem.find("memory") != std::string_view::npos ? told : untold);
        }
    }
};

// A phone that reads its files for the first time.
class FreshPhone {
public:
    explicit FreshPhone(const TempRoot& root)
        : m_phone({.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = 1ms, .log = {}}) {
        m_phone.setTrace(&failures);
        EXPECT_TRUE(Wideseek_PreInit());
    }
    ~FreshPhone() {
        NS_WS::CWideseekController::ReleaseInstance();
        m_phone.setTrace(nullptr);
    }

    void search() {
        m_screen.pages.clear();
        Wideseek_ResetKey();
        Wideseek_SearchUnion("53", 0, 10, &m_screen);
        m_phone.kernel().advance(1s);
    }

    std::vector<std::string> found() const {
        return m_screen.pages.empty() ? std::vector<std::string>() : rowsIn(m_screen.pages.back());
    }

    Failures failures;

private:
    host::Phone m_phone;
    Screen m_screen;
};

TEST(Memory, AFileThatThereIsNoMemoryForFailsItsSourceOnce) {
    const TempRoot root;
    const std::string contacts =
        "name,number1,number2\n\"Ann with a name that is no short string\",5311,\"53 12\"\nB,x\n";
    root.write("config/contacts/local_directory.csv", contacts);
    root.write("config/contacts/ldap_directory.csv", contacts);
    root.write("config/contacts/call_log.csv",
               "time,direction,name,number\n2026-01-02T03:04:05,out,Cal with a name,5321\n"
               "2026-01-03T03:04:05,in,Cal with a name,5322\nyesterday,out,D,53\n");
    root.write("config/contacts/presence_buddies.json",
               R"([{"id": 7, "name": "Bud with a name that is no short string", "attributes": [
                   {"type": 2, "value": "5371"}, {"type": 2, "value": "5372"}]}, {"id": "8"}])");
    for (const char* source : {localId, ldapId, callsId, buddiesId}) {
        root.write("config/data/wideseek.xml", sourceListOf({source}));
        std::vector<std::string> right;
        {
            FreshPhone phone(root);
            phone.search();
            right = phone.found();
        }
        EXPECT_EQ(right.size(), 2U) << source;
        for (const bool lasts : {false, true}) {
            int told = 0;
            for (std::size_t nth = 1, failed = 1; failed > 0; ++nth) {
                SCOPED_TRACE(source + std::string(lasts ? ", from allocation " : ", allocation ") +
                             std::to_string(nth));
                FreshPhone phone(root);
                allocationFault = {nth, lasts, 0};
                EXPECT_NO_THROW(phone.search());
                failed = allocationFault.failed;
                allocationFault = {};
                const std::vector<std::string> found = phone.found();
                ASSERT_TRUE(found.empty() || found == right) << testing::PrintToString(found);
                ASSERT_EQ(host::heldLocks(), 0U);
                told += phone.failures.told;
                ASSERT_EQ(phone.failures.untold, 0) << "a failure without a reason";
                phone.search();
                ASSERT_EQ(phone.found(), right);
                ASSERT_FALSE(HasFailure());
            }
            EXPECT_TRUE(told > 10 || lasts) << source << ": how often it was told why";
        }
    }
}

} // namespace
