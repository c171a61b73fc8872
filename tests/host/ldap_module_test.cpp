// The phone's LDAP module over a scripted directory and over the embedded one.

#include "host/Phone.h"
#include "host/ldap/EmbeddedLdap.h"
#include "platform/Ldap.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using host::Phone;

// Keeps what it is asked, and every way to answer: also those that a well-behaved directory would no longer use.
struct KeptLdap : host::LdapDirectory {
    std::string calls; // "a, b, abandon": asked for these keys, then told to give up
    std::vector<Done> done;

    void start(host::LdapQuery query, Done answer) override {
        EXPECT_EQ(query.maxCount, 9);
        calls += (calls.empty() ? "" : ", ") + query.key;
        done.push_back(std::move(answer));
    }
    void abandon() override { calls += ", abandon"; }
};

struct Receiver : NS_TA::CTaskActionCallbackBase {
    explicit Receiver(std::string& seen) : answers(seen) {}
    ~Receiver() override { WithdrawMessages(); }

    std::string& answers;

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        const auto& answer = dynamic_cast<NS_TA::CLdapAction&>(*pAction);
        answers += answer.GetKey() + (answer.GetResultCode() == 0 ? ":" : " failed:");
        for (const auto& row : answer.GetResultList()) {
            answers += " " + row.strName + "/" + row.strNumber;
        }
        answers += "; ";
    }
};

class LdapModule : public testing::Test {
protected:
    Phone phone{{.root = {}, .driver = host::Driver::stepped, .ldapDelay = {}, .contactFiles = false, .log = {}}};
    std::shared_ptr<KeptLdap> directory = std::make_shared<KeptLdap>();
    std::string answers;
    std::unique_ptr<Receiver> receiver = std::make_unique<Receiver>(answers);

    void SetUp() override { phone.setLdap(directory); }
    void TearDown() override {
        phone.kernel().advance(1h);
        EXPECT_TRUE(phone.isIdle());
        EXPECT_TRUE(Phone::outstanding().empty());
    }
    int ask(const std::string& key, Receiver* by = nullptr) {
        return Ldap_SearchAsync(key, 0, 9, by != nullptr ? by : receiver.get(),
                                phone.kernel().findThread(host::Kernel::searchThread));
    }
    void run(host::Duration by = 0ms) { phone.kernel().advance(by); }
    void answer(std::size_t query, std::list<NS_TA::LdapResultItem> rows = {}, bool succeeded = true) {
        directory->done[query]({succeeded, std::move(rows), succeeded ? "" : "refused"});
    }
};

TEST_F(LdapModule, AnAnswerArrivesOnceOnTheThreadThatWasNamedAndNeverFromWithinACall) {
    EXPECT_NE(ask("a"), 0);
    EXPECT_FALSE(phone.isIdle()) << "an answer is awaited";
    answer(0, {{"Ann", "1"}, {"Ann", ""}});
    answer(0);
    EXPECT_EQ(answers, "");
    ASSERT_EQ(phone.kernel().ready().size(), 1U);
    EXPECT_EQ(phone.kernel().ready()[0].thread, "ThreadLocalContactSearch");
    run();
    ask("b");
    Phone::failAllocation(1);
    answer(1); // is lost for want of memory
    ask("c");
    answer(2, {{"Cyd", "3"}}, false);
    run();
    phone.setLdap(nullptr);
    EXPECT_EQ(ask("d"), 0);
    EXPECT_EQ(answers, "a: Ann/1 Ann/; c failed: Cyd/3; ");
    run();
    EXPECT_EQ(answers, "a: Ann/1 Ann/; c failed: Cyd/3; d failed:; ");
}

TEST_F(LdapModule, ANewerQueryTakesThePlaceOfTheOlderOneWhereverThatStands) {
    ask("a"); // runs in the directory
    ask("b"); // is answered, not delivered
    answer(1, {{"b", "2"}});
    ask("c");
    EXPECT_EQ(directory->calls, "a, abandon, b, c");
    answer(0, {{"late", "1"}});
    answer(1, {}, false);
    run();
    EXPECT_EQ(answers, "");
    answer(2);
    run();
    EXPECT_EQ(answers, "c:; ");
}

TEST_F(LdapModule, NothingReachesACallbackObjectThatIsGone) {
    ask("a");
    answer(0);
    receiver.reset(); // with the answer queued
    run();
    receiver = std::make_unique<Receiver>(answers);
    ask("b");
    receiver.reset(); // with the query running
    EXPECT_EQ(directory->calls, "a, b, abandon");
    EXPECT_TRUE(phone.isIdle());
    answer(1);
    run();
    EXPECT_EQ(answers, "");
}

TEST_F(LdapModule, QueriesForDifferentCallbackObjectsTakeTurns) {
    Receiver other(answers);
    auto third = std::make_unique<Receiver>(answers);
    ask("a");
    ask("w", third.get());
    ask("x", &other);
    ask("y", &other); // in place of x, which still waited
    third.reset();
    answer(0);
    run();
    EXPECT_EQ(directory->calls, "a, y");
    ask("b");
    ask("z", &other); // behind b now, which does not wait any longer
    EXPECT_EQ(directory->calls, "a, y, abandon, b");
    answer(2);
    run();
    answer(3);
    run();
    EXPECT_EQ(answers, "a:; b:; z:; ");
}

TEST_F(LdapModule, TheEmbeddedDirectoryAnswersAfterItsDelayWithARowPerNumber) {
    auto people = std::make_unique<test::ScriptedSource>();
    people->contacts = {{"Ann", {"51", "", "52"}}, {"Bob", {}}, {"Cyd", {"53"}}, {"Dan", {"54"}}};
    const auto& asked = people->asked;
    phone.setLdap(std::make_shared<host::EmbeddedLdap>(phone.kernel(), std::move(people), 300ms));
    ask("5");
    run(299ms);
    Ldap_SearchAsync("", 2, 3, receiver.get(), nullptr);
    run(300ms - 1us);
    EXPECT_EQ(answers, "");
    run(1us);
    EXPECT_EQ(answers, ": Ann/51 Ann/52 Cyd/53; ") << "three people, whatever index is looked at";
    EXPECT_EQ(asked, std::vector<std::string>{""}) << "when its time has come";
    ask("b");
    phone.setLdap(nullptr); // and the directory goes with its query
}

} // namespace
