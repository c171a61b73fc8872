// The directory over a real LDAP server: what a key finds there, and what becomes of a query when something fails. Real
// threads and clocks; bounds of time are wide, and nothing sleeps to be right.
#include "host/LdapFilter.h"
#include "host/ServerLdap.h"
#include "tests/support/FaultyPeer.h"
#include "tests/support/SlapdServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <future>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;
using host::LdapAnswer;
using host::LdapDirectory;
using host::ServerLdapOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;
using Rows = std::vector<std::string>;

constexpr auto prompt = 900ms; // how long anything may take that does not wait for the network
constexpr auto longest = 20s;  // before a test gives up

std::shared_ptr<LdapDirectory> open(const ServerLdapOptions& options) {
    return host::makeServerLdap(options, nullptr);
}

LdapAnswer ask(LdapDirectory& directory, const std::string& key, int maxCount = 1000) {
    const auto answer = std::make_shared<std::promise<LdapAnswer>>();
    std::future<LdapAnswer> future = answer->get_future();
    directory.start({key, maxCount}, [answer](LdapAnswer given) { answer->set_value(std::move(given)); });
    if (future.wait_for(longest) != std::future_status::ready) {
        throw std::runtime_error("no answer for " + key);
    }
    return future.get();
}

Rows rowsOf(const LdapAnswer& answer) {
    Rows rows;
    for (const NS_TA::LdapResultItem& row : answer.rows) {
        rows.push_back(row.strName + "/" + row.strNumber);
    }
    return rows;
}

host::LdapDirectory::Done mustNotCome() {
    return [](const LdapAnswer&) { ADD_FAILURE() << "an answer for a query that was given up"; };
}

class LdapServer : public testing::Test {
protected:
    static void SetUpTestSuite() { s_server = std::make_unique<SlapdServer>(); }
    static void TearDownTestSuite() { s_server.reset(); }

    static ServerLdapOptions options() {
        ServerLdapOptions options;
        options.url = s_server->url();
        options.base = "dc=example,dc=com";
        options.bindDn = "cn=admin,dc=example,dc=com";
        options.password = "secret";
        options.numberAttributes = {"telephonenumber", "mobile", "deskPhone"};
        return options;
    }

    static ServerLdapOptions anonymousAt(const std::string& url) {
        ServerLdapOptions options;
        options.url = url;
        options.base = "dc=example,dc=com";
        return options;
    }

    static std::unique_ptr<SlapdServer> s_server;
};
std::unique_ptr<SlapdServer> LdapServer::s_server;

TEST_F(LdapServer, AKeyFindsWhatHoldsItLiterallyAndNothingElse) {
    const Rows nora = {"Nora Numbers/+441632960123", "Nora Numbers/+447700900456", "Nora Numbers/*21#",
                       "Nora Numbers/447700900456"};
    const Rows star = {"Star * Odd/8001"};
    const Rows bracket = {"Bracket (cn=* Odd/8002"};
    const Rows backslash = {"Back\\2a Odd/8003"};
    const struct {
        std::string key;
        Rows rows;
    } cases[] = {
        {"person 0042", {"Person 0042/710042"}},
        {"zo\u00EB", {"Zo\u00EB Odd/8004"}},
        {"nora", nora},
        {"n\u00F2", {}},
        // Numbers, whatever stands between their digits; all numbers of the person come along.
        {"712042", {"Person 2042/712042"}},
        {"1632960123", nora},
        {"7700900456", nora},
        {"*21#", nora},
        {"*", nora},
        {"7042", {}}, // 71-0042 and many others have these digits, but not side by side
        {"0042*", {}},
        // What has a meaning in a filter.
        {"r * o", star},
        {"* odd", {star[0], bracket[0]}},
        {"*odd", {}},
        {"(cn=*", bracket},
        {"bracket (cn=* odd", bracket},
        {"odd)(cn=*", {}},
        {"*)(uid=*", {}},
        {"\\", backslash},
        {"\\2a", backslash},
        {"k*", {}},
        {std::string("\0", 1), {}},
        {std::string("nora\0", 5), {}},
        {"\xFF", {}},
        {"odd\xC3", {}},
        {"", {}},
    };
    const auto directory = open(options());
    for (const auto& [key, rows] : cases) {
        const LdapAnswer answer = ask(*directory, key);
        EXPECT_TRUE(answer.succeeded) << key;
        EXPECT_EQ(answer.problem, "") << key;
        EXPECT_EQ(rowsOf(answer), rows) << key;
    }
}

TEST_F(LdapServer, TheFirstReadableNameCountsAndUnusablePeopleAreLeftOut) {
    const struct {
        std::vector<std::string> names;
        std::vector<std::string> numbers;
        std::string key;
        Rows rows;
        std::string problem;
    } cases[] = {
        {{"DISPLAYNAME", "CN"}, {"telephoneNumber"}, "zo\u00EB", {"Zoe in Full/8004"}, ""},
        {{"DISPLAYNAME", "CN"}, {"telephoneNumber"}, "star", {"Star * Odd/8001"}, ""},
        {{"jpegPhoto", "cn"}, {"telephoneNumber"}, "byte", {"Byte Broken/8005"}, ""},
        {{"jpegPhoto"}, {"telephoneNumber"}, "byte", {}, "1 people left out without a readable name"},
        {{"cn"}, {"deskPhone"}, "byte", {}, "1 people left out without a number"},
        {{"cn"}, {"noSuchAttribute"}, "star", {}, "1 people left out without a number"},
    };
    for (const auto& [names, numbers, key, rows, problem] : cases) {
        ServerLdapOptions chosen = options();
        chosen.nameAttributes = names;
        chosen.numberAttributes = numbers;
        chosen.nameFilter = "(cn=*%k*)";
        const LdapAnswer answer = ask(*open(chosen), key);
        EXPECT_TRUE(answer.succeeded) << answer.problem;
        EXPECT_EQ(rowsOf(answer), rows);
        EXPECT_THAT(answer.problem, HasSubstr(problem));
        EXPECT_EQ(answer.problem.empty(), problem.empty()) << answer.problem;
    }
}

TEST_F(LdapServer, AReachedSizeLimitGivesWhatWasReceivedAndSaysSo) {
    const struct {
        std::string key;
        int sizeLimit;
        int maxCount;
        std::size_t rows;
        bool cut;
    } cases[] = {
        {"person", 10, 1000, 10, true},
        {"person", 10, 5, 5, true},
        {"person 000", 10, 1000, 10, false},
        {"71", 10, 1000, 10, true},
        {"71", 0, 7, 7, true},
        {"71", 0, 0, 500, true},     // the last is the server's own limit
        {"729", 10, 1000, 3, false}, // among hundreds with these digits apart
    };
    for (const auto& [key, sizeLimit, maxCount, rows, cut] : cases) {
        ServerLdapOptions chosen = anonymousAt(s_server->url());
        chosen.sizeLimit = sizeLimit;
        const LdapAnswer answer = ask(*open(chosen), key, maxCount);
        EXPECT_TRUE(answer.succeeded) << answer.problem;
        EXPECT_EQ(answer.rows.size(), rows) << key;
        EXPECT_EQ(answer.problem.find("size limit") != std::string::npos, cut) << key << ": " << answer.problem;
    }
}

TEST_F(LdapServer, FastTypingIsAnsweredForTheLastKeyOnly) {
    FaultyPeer peer(FaultyPeer::Fault::cut, s_server->port());
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    for (const bool abandoning : {false, true}) {
        peer.hold(true);
        for (int i = 0; i < 19; ++i) {
            directory->start({"person " + std::to_string(i), 1000}, mustNotCome());
            if (abandoning) {
                directory->abandon();
            }
        }
        // The last one starts another from within its answer.
        std::promise<LdapAnswer> last;
        directory->start({"person 0042", 1000}, [&](const LdapAnswer& answer) {
            EXPECT_THAT(rowsOf(answer), ElementsAre("Person 0042/710042"));
            directory->abandon();
            directory->start({"712042", 1000}, [&](LdapAnswer next) { last.set_value(std::move(next)); });
        });
        peer.hold(false);
        EXPECT_THAT(rowsOf(last.get_future().get()), ElementsAre("Person 2042/712042"));
    }
    EXPECT_EQ(peer.connections(), 1);
}

TEST_F(LdapServer, NothingComesOnceAbandonHasReturned) {
    const auto directory = open(options());
    for (int i = 0; i < 50; ++i) {
        auto answers = std::make_unique<int>(0);
        directory->start({"person 0042", 1000}, [&count = *answers](const LdapAnswer&) { ++count; });
        if (i % 2 != 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(i * 40)); // so that some come in the middle
        }
        directory->abandon();
        EXPECT_LE(*answers, 1);
        answers.reset(); // a later answer touches freed memory
    }

    std::promise<void> entered;
    std::atomic<bool> returned = false;
    std::atomic<bool> left = false;
    directory->start({"person 0042", 1000}, [&](const LdapAnswer&) {
        entered.set_value();
        for (const Clock::time_point end = Clock::now() + 50ms; !returned && Clock::now() < end;) {
            std::this_thread::yield();
        }
        left = true;
    });
    entered.get_future().wait();
    directory->abandon();
    EXPECT_TRUE(left) << "abandon returned while the answer was being given";
    returned = true;
}

TEST_F(LdapServer, TheOlderQueryIsAbandonedOnTheServer) {
    FaultyPeer peer(FaultyPeer::Fault::silent);
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    directory->start({"first", 10}, mustNotCome());
    ASSERT_TRUE(peer.waitFor("first", longest));
    directory->start({"second", 10}, mustNotCome());
    EXPECT_TRUE(peer.waitFor("\x50\x01\x01", longest)); // AbandonRequest for message 1
    ASSERT_TRUE(peer.waitFor("second", longest));
    directory->abandon();
    EXPECT_TRUE(peer.waitFor("\x50\x01\x03", longest));
    EXPECT_EQ(peer.connections(), 1);
}

TEST_F(LdapServer, EveryFailureIsAnsweredInTimeAndSaysWhatToCheck) {
    FaultyPeer silent(FaultyPeer::Fault::silent);
    FaultyPeer full(FaultyPeer::Fault::full);
    FaultyPeer stalling(FaultyPeer::Fault::cut, s_server->port());
    FaultyPeer stallingTls(FaultyPeer::Fault::cut, s_server->tlsPort());
    stalling.stallAfter(3000); // in the middle of a message
    stallingTls.stallAfter(3000);
    const auto with = [](ServerLdapOptions changed, const auto& change) {
        change(changed);
        return changed;
    };
    const std::string plain = "ldap://";
    constexpr auto quick = 200ms; // for servers that do not answer
    const struct {
        std::chrono::milliseconds limit;
        ServerLdapOptions options;
        std::string problem;
    } cases[] = {
        {longest, with(options(), [](auto& changed) { changed.password = "wrong"; }), "bind_dn and password"},
        {longest, with(options(), [](auto& changed) { changed.base = "dc=elsewhere"; }), "check [ldap] base"},
        {longest, anonymousAt(plain + "127.0.0.1:" + std::to_string(freePort())), "check that the server runs"},
        {longest, anonymousAt("ldaps://127.0.0.1:" + std::to_string(s_server->port())), "no TLS with the server"},
        {longest, anonymousAt(s_server->tlsUrl()), "ca_file"},
        {longest, with(anonymousAt(s_server->tlsUrl()), [](auto& changed) { changed.caFile = "/none"; }), "ca_file"},
        {quick, anonymousAt(plain + "host.invalid"), "resolved"},
        {quick, anonymousAt(plain + silent.address()), "time limit of 200 ms"},
        {quick, anonymousAt(plain + stalling.address()), "time limit of 200 ms"},
        {quick, with(anonymousAt("ldaps://" + stallingTls.address()), [](auto& changed) { changed.verify = false; }),
         "no complete answer"},
        {quick, with(options(), [&](auto& changed) { changed.url = plain + silent.address(); }), "while signing in"},
        {quick, with(anonymousAt(plain + silent.address()), [](auto& changed) { changed.startTls = true; }), "for TLS"},
        {quick, anonymousAt("ldaps://" + silent.address()), "no TLS handshake"},
        {quick, anonymousAt(plain + full.address()), "cannot connect"},
    };
    for (const auto& [limit, chosen, problem] : cases) {
        ServerLdapOptions limited = chosen;
        limited.timeLimit = limit;
        const auto directory = open(limited);
        for (int attempt = 0; attempt < 2; ++attempt) {
            const Clock::time_point begin = Clock::now();
            const LdapAnswer answer = ask(*directory, "person");
            EXPECT_LT(Clock::now() - begin, limit + prompt) << chosen.url;
            EXPECT_FALSE(answer.succeeded) << chosen.url;
            EXPECT_THAT(answer.problem, HasSubstr(problem));
            EXPECT_THAT(answer.problem, testing::Not(HasSubstr("wrong")));
        }
    }
}

TEST_F(LdapServer, DestructionIsPromptWhateverTheServerDoes) {
    for (const std::string scheme : {"ldap://", "ldaps://"}) {
        for (const auto fault : {FaultyPeer::Fault::silent, FaultyPeer::Fault::full}) {
            FaultyPeer peer(fault);
            auto directory = open(anonymousAt(scheme + peer.address()));
            directory->start({"key", 10}, mustNotCome());
            if (fault == FaultyPeer::Fault::silent) {
                ASSERT_TRUE(peer.waitFor(scheme == "ldap://" ? "\x30" : "\x16", longest)); // an LDAP or TLS message
            }
            const Clock::time_point begin = Clock::now();
            directory->abandon();
            directory.reset();
            EXPECT_LT(Clock::now() - begin, prompt) << scheme;
        }
    }
}

TEST_F(LdapServer, ABrokenConnectionIsMadeAgain) {
    FaultyPeer peer(FaultyPeer::Fault::cut, s_server->port());
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    const auto count = [&] { return ask(*directory, "person 00").rows.size(); };

    peer.cutAfter(2000); // in the middle of an entry
    const LdapAnswer broken = ask(*directory, "person 00");
    EXPECT_FALSE(broken.succeeded);
    EXPECT_THAT(broken.problem, HasSubstr("closed the connection"));
    EXPECT_THAT(broken.rows, IsEmpty());

    peer.cutAfter(SIZE_MAX);
    EXPECT_EQ(count(), 100U);
    EXPECT_EQ(count(), 100U);
    EXPECT_EQ(peer.connections(), 2); // kept between queries

    peer.cutNow();
    EXPECT_EQ(count(), 100U); // whether the cut comes before the query or within it
    s_server->restart();
    EXPECT_EQ(count(), 100U);
    EXPECT_GE(peer.connections(), 3);
}

TEST_F(LdapServer, TlsIsSpokenToAServerWhoseCertificateIsTrusted) {
    for (const bool startTls : {false, true}) {
        for (const bool verify : {false, true}) {
            ServerLdapOptions chosen = options();
            chosen.url = startTls ? s_server->url() : s_server->tlsUrl();
            chosen.startTls = startTls;
            chosen.verify = verify;
            chosen.caFile = verify ? s_server->certificate() : "";
            const auto directory = open(chosen);
            EXPECT_EQ(ask(*directory, "person 00").rows.size(), 100U) << startTls << verify;
            EXPECT_THAT(rowsOf(ask(*directory, "712042")), ElementsAre("Person 2042/712042"));
        }
    }
}

TEST(LdapFilter, WhatMeansSomethingInAFilterOrIsNotUtf8IsEscaped) {
    EXPECT_EQ(host::escapeFilterValue(std::string_view("a*(b)\\\0\u00E9&|!=", 13)), R"(a\2a\28b\29\5c\00)"
                                                                                    "\u00E9&|!=");
    EXPECT_EQ(host::escapeFilterValue("\xFFx\xC3(\xED\xA0\x80\xF0\x9F\x98"), R"(\ffx\c3\28\ed\a0\80\f0\9f\98)");
    EXPECT_EQ(host::numberFilter("(|(a=*%k*)(b=100%%*%k))", "*1#"), R"((|(a=*\2a*1*#*)(b=100%*\2a*1*#)))");
}

TEST(LdapSettings, MistakesAreNamedAndNoServerIsUsed) {
    const auto read = [](const std::string& lines, std::vector<std::string>& problems) {
        const std::filesystem::path file = testing::TempDir() + "ldap_settings.ini";
        std::ofstream(file) << "[ldap]\n" << (lines.starts_with("url") ? "" : "url = ldap://h\n") << lines;
        auto options = host::readServerLdapOptions(file, problems);
        std::filesystem::remove(file);
        return options;
    };
    std::vector<std::string> problems;
    const auto good = read("starttls = on\nverify = off\nscope = one\nbind_dn = cn=me\npassword = p\n"
                           "name_attributes = displayName , cn\nnumber_filter = (mobile=*%k*)\nsize_limit = 0\n"
                           "time_limit_ms = 1500\n",
                           problems);
    ASSERT_TRUE(good) << testing::PrintToString(problems);
    EXPECT_TRUE(good->startTls && !good->verify && good->scope == host::LdapScope::one && good->sizeLimit == 0);
    EXPECT_EQ(good->timeLimit, 1500ms);
    EXPECT_THAT(good->nameAttributes, ElementsAre("displayName", "cn"));
    EXPECT_EQ(good->numberFilter, "(mobile=*%k*)");

    for (const std::string line : {"url = http://h",
                                   "url = ldap://h/dc=x",
                                   "url =",
                                   "starttls = perhaps",
                                   "verify = 2",
                                   "scope = all",
                                   "ca_file = /no/such/file",
                                   "bind_dn = cn=me",
                                   "password = p",
                                   "name_attributes = cn,,sn",
                                   "number_attributes = a)(b",
                                   "size_limit = many",
                                   "size_limit = -1",
                                   "time_limit_ms = 0",
                                   "network_timeout_ms = 5s",
                                   "name_filter = (cn=*)",
                                   "name_filter = (%k=a)",
                                   "name_filter = (cn=%x%k)",
                                   "number_filter = (&(cn=%k)",
                                   "number_filter = %k"}) {
        problems.clear();
        EXPECT_FALSE(read(line + "\n", problems)) << line;
        const std::string key = line.substr(0, line.find(' '));
        const std::string named = key == "bind_dn" ? "password" : key == "password" ? "bind_dn" : key;
        ASSERT_EQ(problems.size(), 1U) << line;
        EXPECT_THAT(problems.front(), HasSubstr("ldap_settings.ini: [ldap] " + named + ": "));
    }
}

} // namespace
