// The phone's LDAP module over a scripted directory and over the embedded one.

#include "host/EmbeddedLdap.h"
#include "host/Phone.h"
#include "platform/Ldap.h"
#include "tests/support/Recorder.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using host::Driver;
using host::Phone;

// Keeps what it is asked, and every way to answer: also those that a well-behaved directory would no longer use.
struct KeptLdap : host::LdapDirectory {
    std::string calls;
    std::vector<Done> done;

    void start(host::LdapQuery query, Done answer) override {
        calls += query.key + std::to_string(query.maxCount) + " ";
        done.push_back(std::move(answer));
    }
    void abandon() override { calls += "abandon "; }
};

struct Receiver : NS_TA::CTaskActionCallbackBase {
    explicit Receiver(std::string& seen) : answers(seen) {}
    ~Receiver() override { WithdrawMessages(); }

    std::string& answers;

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override {
        EXPECT_EQ(pAction->GetTypeId(), 3);
        const auto& answer = dynamic_cast<NS_TA::CLdapAction&>(*pAction);
        answers += answer.GetKey() + "=" + std::to_string(answer.GetResultCode());
        for (const auto& row : answer.GetResultList()) {
            answers += "," + row.strName + " " + row.strNumber;
        }
        answers += ";";
    }
};

class LdapModule : public testing::Test {
protected:
    Phone phone{{.root = {}, .driver = Driver::stepped, .ldapDelay = {}, .contactFiles = false, .log = {}}};
    std::shared_ptr<KeptLdap> directory = std::make_shared<KeptLdap>();
    std::string answers;
    std::unique_ptr<Receiver> receiver = std::make_unique<Receiver>(answers);
    void* search = phone.kernel().findThread(host::Kernel::searchThread);

    void SetUp() override { phone.setLdap(directory); }
    void TearDown() override {
        phone.kernel().advance(1h);
        EXPECT_TRUE(phone.isIdle());
        EXPECT_TRUE(Phone::outstanding().empty());
    }
    int ask(const std::string& key) { return Ldap_SearchAsync(key, 0, 9, receiver.get(), search); }
    void run() { phone.kernel().advance(0ms); }
};

TEST_F(LdapModule, AnAnswerArrivesOnceOnTheThreadThatWasNamedAndNeverFromWithinACall) {
    EXPECT_NE(ask("a"), 0);
    EXPECT_FALSE(phone.isIdle()) << "an answer is awaited";
    EXPECT_EQ(phone.kernel().pending(), 0U);
    directory->done[0]({true, {{"Ann", "1"}, {"Ann", ""}}, ""});
    directory->done[0]({true, {}, ""});
    EXPECT_EQ(answers, "");
    ASSERT_EQ(phone.kernel().ready().size(), 1U);
    EXPECT_EQ(phone.kernel().ready()[0].thread, "ThreadLocalContactSearch");
    run();
    EXPECT_EQ(answers, "a=0,Ann 1,Ann ;");
}

TEST_F(LdapModule, ANewerQueryTakesThePlaceOfTheOlderOneWhereverThatStands) {
    ask("a"); // runs in the directory
    ask("b"); // is answered, not delivered
    directory->done[1]({true, {{"b", "2"}}, ""});
    ask("c");
    EXPECT_EQ(directory->calls, "a9 abandon b9 c9 ");
    directory->done[0]({true, {{"late", "1"}}, ""});
    directory->done[1]({false, {}, "late"});
    run();
    EXPECT_EQ(answers, "");
    directory->done[2]({false, {{"c", "3"}}, "size limit"});
    run();
    EXPECT_EQ(answers, "c=1,c 3;");
}

TEST_F(LdapModule, NothingReachesACallbackObjectThatIsGone) {
    ask("a");
    directory->done[0]({true, {}, ""});
    receiver.reset(); // with the answer queued
    run();
    receiver = std::make_unique<Receiver>(answers);
    ask("b");
    receiver.reset(); // with the query running
    EXPECT_EQ(directory->calls, "a9 b9 abandon ");
    EXPECT_TRUE(phone.isIdle());
    directory->done[1]({true, {}, ""});
    run();
    EXPECT_EQ(answers, "");
    EXPECT_EQ(Ldap_SearchAsync("c", 0, 9, nullptr, search), 0);
}

TEST_F(LdapModule, QueriesForDifferentCallbackObjectsTakeTurns) {
    Receiver other(answers);
    auto third = std::make_unique<Receiver>(answers);
    ask("a");
    Ldap_SearchAsync("w", 0, 9, third.get(), search);
    Ldap_SearchAsync("x", 0, 9, &other, search);
    Ldap_SearchAsync("y", 0, 9, &other, search); // in place of x, which still waited
    third.reset();
    EXPECT_EQ(directory->calls, "a9 ");
    directory->done[0]({true, {}, ""});
    run();
    EXPECT_EQ(directory->calls, "a9 y9 ");
    ask("b");
    directory->done[1]({true, {}, ""});
    run();
    directory->done[2]({true, {}, ""});
    run();
    EXPECT_EQ(answers, "a=0;y=0;b=0;");
    Ldap_SearchAsync("z", 0, 9, &other, search);
    ask("c");
    other.SetCallBackThread(nullptr);
    Ldap_SearchAsync("z", 0, 9, &other, search); // behind c now, which does not wait any longer
    EXPECT_EQ(directory->calls, "a9 y9 b9 z9 abandon c9 ");
    directory->done[4]({true, {}, ""});
    run();
    directory->done[5]({true, {}, ""});
    run();
    EXPECT_EQ(answers, "a=0;y=0;b=0;c=0;z=0;");
}

TEST_F(LdapModule, AQueryIsTracedFromItsStartToTheSearchOrToItsEnd) {
    test::Recorder recorder;
    phone.setTrace(&recorder);
    ask("a");
    ask("b");
    directory->done[1]({true, {{"Ann", "1"}, {"Ann", ""}, {"Bob", "2"}}, ""});
    ask("c");
    directory->done[2]({false, {}, "refused"});
    recorder.seen += "answered\n";
    run();
    EXPECT_EQ(recorder.seen, "3|LDAP|a|0/0\n5|LDAP|a|0/0\n3|LDAP|b|0/0\n5|LDAP||0/0\n3|LDAP|c|0/0\nanswered\n"
                             "4|LDAP|c|0/0|refused\n");
    recorder.seen.clear();
    ask("d");
    directory->done[3]({true, {{"Ann", "1"}, {"Ann", ""}, {"Bob", "2"}}, ""});
    run();
    EXPECT_EQ(recorder.seen, "3|LDAP|d|0/0\n4|LDAP|d|2/2\n");
    phone.setTrace(nullptr);
}

TEST_F(LdapModule, AMissingDirectoryIsAFailureThatArrivesLaterAllTheSame) {
    phone.setLdap(nullptr);
    EXPECT_EQ(ask("a"), 0);
    EXPECT_EQ(answers, "");
    run();
    EXPECT_EQ(answers, "a=1;");
}

TEST_F(LdapModule, WithoutMemoryForAnAnswerTheNextQueryIsAnswered) {
    ask("a");
    Phone::failAllocation(1);
    directory->done[0]({true, {}, ""});
    run();
    ask("b");
    directory->done[1]({true, {}, ""});
    run();
    EXPECT_EQ(answers, "b=0;");
}

TEST_F(LdapModule, TheEmbeddedDirectoryAnswersAfterItsDelayWithARowPerNumber) {
    auto people = std::make_unique<test::ScriptedSource>();
    people->contacts = {{"Ann", {"51", "", "52"}}, {"Bob", {}}, {"Cyd", {"53"}}, {"Dan", {"54"}}};
    auto* script = people.get();
    phone.setLdap(std::make_shared<host::EmbeddedLdap>(phone.kernel(), std::move(people), 300ms));
    Ldap_SearchAsync("", 2, 3, receiver.get(), search);
    phone.kernel().advance(300ms - 1us);
    EXPECT_EQ(answers, "");
    EXPECT_TRUE(script->asked.empty());
    phone.kernel().advance(1us);
    EXPECT_EQ(answers, "=0,Ann 51,Ann 52,Cyd 53;") << "three people, whatever index is looked at";
    ask("5");
    phone.kernel().advance(299ms);
    ask("a");
    phone.kernel().advance(299ms);
    script->fails = true;
    phone.kernel().advance(1ms);
    EXPECT_EQ(script->asked, (std::vector<std::string>{"", "a"}));
    EXPECT_EQ(answers.substr(answers.find(';') + 1, 3), "a=1");
    ask("b");
    phone.setLdap(nullptr); // and the directory goes with its query
}

TEST(LdapModuleLive, AnswersAndAbandonedQueriesMeetWithoutLoss) {
    Phone phone({.root = {}, .driver = Driver::live, .ldapDelay = {}, .contactFiles = false, .log = {}});
    auto people = std::make_unique<test::ScriptedSource>();
    people->contacts = {{"Ann", {"51"}}};
    phone.setLdap(std::make_shared<host::EmbeddedLdap>(phone.kernel(), std::move(people), 100us));
    std::string answers;
    for (int i = 0; i < 100; ++i) {
        Receiver receiver(answers);
        Ldap_SearchAsync("gone", 0, 9, &receiver, nullptr);
        std::this_thread::sleep_for(std::chrono::microseconds(3 * i));
        Ldap_SearchAsync(std::to_string(i), 0, 9, &receiver, nullptr);
        if (i % 2 == 0) {
            EXPECT_TRUE(phone.kernel().serveMain([&] { return phone.isIdle(); }, 10s));
            EXPECT_EQ(answers.substr(0, answers.find(',')).find(std::to_string(i) + "=0"), 0U) << answers;
            answers.clear();
        }
    }
    phone.kernel().serveMain([&] { return phone.isIdle(); }, 10s);
    EXPECT_EQ(answers, "");
    EXPECT_TRUE(Phone::outstanding().empty());
}

} // namespace
