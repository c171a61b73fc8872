// The directory over a real LDAP server: what a key finds there, and what becomes of a query when something fails. Real
// threads and clocks; bounds of time are wide, and nothing sleeps to be right.
#include "host/ldap/server/LdapFilter.h"
#include "host/ldap/server/LdapPeople.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/ldap/server/SignInPause.h"
#include "host/ldap/server/Waiter.h"
#include "host/text/NumberForm.h"
#include "tests/support/FaultyPeer.h"
#include "tests/support/SlapdServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <future>
#include <map>

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using host::LdapAnswer;
using host::LdapDirectory;
using host::ServerLdapOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;
using Rows = std::vector<std::string>;

constexpr auto prompt = 900ms; // how long anything may take that does not wait for the network

std::shared_ptr<LdapDirectory> open(const ServerLdapOptions& options) {
    return host::makeServerLdap(options, nullptr);
}

LdapAnswer ask(LdapDirectory& directory, const std::string& key, int maxCount = 1000) {
    std::promise<LdapAnswer> answer;
    directory.start({key, maxCount}, [&](LdapAnswer given) { answer.set_value(std::move(given)); });
    return answer.get_future().get();
}

Rows rowsOf(const LdapAnswer& answer) {
    Rows rows;
    for (const NS_TA::LdapResultItem& row : answer.rows) {
        rows.push_back(row.strName + "/" + row.strNumber);
    }
    return rows;
}

void mustNotCome(const LdapAnswer&) {
    ADD_FAILURE() << "an answer for a query that was given up";
}

ServerLdapOptions anonymousAt(const std::string& url) {
    ServerLdapOptions options;
    options.url = url;
    options.base = "dc=example,dc=com";
    return options;
}

template <typename Value>
ServerLdapOptions with(ServerLdapOptions options, Value ServerLdapOptions::*member,
                       const std::type_identity_t<Value>& value) {
    options.*member = value;
    return options;
}

// Many messages that hold an entry without attributes, for the request of this number.
std::string flood(char request) {
    std::string bytes;
    for (int i = 0; i < 1000; ++i) {
        bytes += "\x30\x09\x02\x01"s + request + "\x64\x04\x04\x00\x30\x00"s;
    }
    return bytes;
}

const SlapdServer& server() {
    static const SlapdServer server;
    return server;
}

ServerLdapOptions signedIn() {
    ServerLdapOptions options = anonymousAt(server().url);
    options.bindDn = "cn=admin,dc=example,dc=com";
    options.password = "secret";
    options.numberAttributes = {"telephonenumber", "mobile", "roomNumber"};
    return options;
}

TEST(LdapServer, AKeyFindsWhatHoldsItLiterallyAndNothingElse) {
    const Rows nora = {"Nora Numbers/+441632960123", "Nora Numbers/+447700900456", "Nora Numbers/*21#",
                       "Nora Numbers/447700900456"};
    std::map<std::string, Rows> cases = {
        {"person 0042", {"Person 0042/710042"}},
        {"0042, pers", {"Person 0042/710042"}},
        {"zo\u00EB", {"Zo\u00EB Odd/8004"}},
        {"aas joerg", {"J\u00F6rg \u00C5s/8106"}},
        {"nora", nora},
        // Numbers, whatever stands between their digits; all numbers of the person come along.
        {"712042", {"Person 2042/712042"}},
        {"1632960123", nora},
        {"*21#", nora},
        {"*", nora},
        // What has a meaning in a filter.
        {"* odd", {"Star * Odd/8001", "Bracket (cn=* Odd/8002"}},
        {"t (cn=* odd", {"Bracket (cn=* Odd/8002"}},
        {"\\2a", {"Back\\2a Odd/8003"}},
    };
    // Among others: 71-0042 and many more have the digits 7042, but not side by side.
    for (const std::string& key : {"n\u00F2"s, "7042"s, "0042*"s, "*odd"s, "odd)(cn=*"s, "*)(uid=*"s, "k*"s, "\0"s,
                                   "nora\0"s, "\xFF"s, "odd\xC3"s, ""s}) {
        cases[key] = {};
    }
    const auto directory = open(signedIn());
    for (const auto& [key, rows] : cases) {
        const LdapAnswer answer = ask(*directory, key);
        EXPECT_TRUE(answer.succeeded && answer.problem.empty()) << key << ": " << answer.problem;
        EXPECT_EQ(rowsOf(answer), rows) << key;
    }
}

TEST(LdapServer, TheFirstReadableNameCountsAndUnusablePeopleAreLeftOut) {
    const struct {
        std::vector<std::string> names;
        std::string number, key;
        Rows rows;
        std::string problem;
    } cases[] = {
        {{"DISPLAYNAME", "CN"}, "telephoneNumber", "zo\u00EB", {"Zoe in Full/8004"}, ""},
        {{"jpegPhoto", "cn"}, "telephoneNumber", "byte", {"Byte Broken/8005"}, ""},
        {{"jpegPhoto"}, "telephoneNumber", "byte", {}, "1 people left out without a readable name"},
        {{"cn"}, "roomNumber", "byte", {}, "1 people left out without a number"},
    };
    for (const auto& [names, number, key, rows, problem] : cases) {
        ServerLdapOptions chosen = with(signedIn(), &ServerLdapOptions::nameFilter, "(cn=*%k*)");
        chosen.nameAttributes = names;
        chosen.numberAttributes = {number};
        const LdapAnswer answer = ask(*open(chosen), key);
        EXPECT_EQ(rowsOf(answer), rows);
        EXPECT_THAT(answer.problem, HasSubstr(problem));
        EXPECT_EQ(answer.problem.empty(), problem.empty()) << answer.problem;
    }
}

TEST(LdapServer, ARowIsFoundAgainWithTheKindsOfItsNumbersAndWhatElseIsToldOfThePerson) {
    const auto directory = host::makeServerLdap(
        with(signedIn(), &ServerLdapOptions::detailAttributes, {"OU", "l", "employeeType"}), nullptr);
    for (const std::string& key : {"nora"s, "person 0042"s, "zo\u00EB"s}) {
        EXPECT_TRUE(ask(*directory, key).problem.empty()); // later answers leave it where it is
    }
    const auto known = directory->find({"Nora Numbers", "+447700900456"});
    ASSERT_TRUE(known);
    using enum host::NumberKind;
    EXPECT_THAT(known->numbers,
                ElementsAre(host::ContactNumber{"+441632960123", work}, host::ContactNumber{"+447700900456", mobile},
                            host::ContactNumber{"*21#"}, host::ContactNumber{"447700900456"}));
    std::string facts;
    for (const auto& [label, value] : known->facts) {
        facts += label + ": " + value + "; ";
    }
    EXPECT_EQ(facts, "Department: Sales; City: Leeds; employeeType: temporary; ");
    const std::vector<host::NameAndNumber> rows = {{"Nora Numbers", "710042"}, {"Person 0042", "710042"}};
    EXPECT_THAT(directory->holds(rows), ElementsAre(false, true));
}

TEST(LdapServer, AReachedSizeLimitGivesWhatWasReceivedAndSaysSo) {
    const struct {
        std::string key;
        int sizeLimit, maxCount;
        std::size_t rows;
        bool cut;
    } cases[] = {
        {"person", 10, 5, 5, true},
        {"71", 10, 1000, 10, true},
        {"71", 0, 0, 500, true},     // the last is the server's own limit
        {"729", 10, 1000, 3, false}, // among hundreds with these digits apart
    };
    for (const auto& [key, sizeLimit, maxCount, rows, cut] : cases) {
        const auto chosen = with(anonymousAt(server().url), &ServerLdapOptions::sizeLimit, sizeLimit);
        const LdapAnswer answer = ask(*open(chosen), key, maxCount);
        EXPECT_TRUE(answer.succeeded) << answer.problem;
        EXPECT_EQ(answer.rows.size(), rows) << key;
        EXPECT_EQ(answer.problem.find("size limit") != std::string::npos, cut) << key << ": " << answer.problem;
    }
}

TEST(LdapServer, AnEnormousEntryIsTakenUpToTheLimitsAndTheRestIsTold) {
    using Limits = host::LdapLimits;
    constexpr std::size_t any = 1'000'000;
    const struct {
        std::size_t Limits::*limit;
        std::size_t value, rows;
        std::string problem;
    } cases[] = {
        {&Limits::nameBytes, 512, 0, "1 people left out whose name is too long (the limit is [ldap] name_limit)"},
        {&Limits::numberBytes, 6, 0, "3000 numbers left out that are too long (the limit is [ldap] number_limit)"},
        {&Limits::numbers, 4, 4, "[ldap] numbers_limit"},
        {&Limits::rows, 5, 5, "[ldap] row_limit"},
        {&Limits::answerBytes, any, 8, "[ldap] answer_limit_kb"}, // of 120 kB each
    };
    for (const auto& [limit, value, rows, problem] : cases) {
        ServerLdapOptions chosen = anonymousAt(server().url);
        chosen.limits = {.nameBytes = any, .numbers = any, .rows = any, .answerBytes = 1000 * any};
        chosen.limits.*limit = value;
        const LdapAnswer answer = ask(*open(chosen), "crowd");
        EXPECT_TRUE(answer.succeeded);
        EXPECT_EQ(answer.rows.size(), rows) << problem;
        EXPECT_THAT(answer.problem, HasSubstr(problem));
    }
    const auto narrow = open(with(anonymousAt(server().url), &ServerLdapOptions::limits, {.entryBytes = 100'000}));
    EXPECT_THAT(ask(*narrow, "crowd").problem, HasSubstr("[ldap] entry_limit_kb"));
    EXPECT_EQ(ask(*narrow, "person 00").rows.size(), 147U);
}

TEST(LdapServer, ManyNumbersTakeTimeInProportionAndAreGivenUpInTheMiddle) {
    host::LdapPeople::Person person;
    person.names.emplace_back("Ann");
    std::list<std::string> numbers;
    for (int i = 0; i < 200'000; ++i) {
        person.numbers.push_back({numbers.emplace_back(std::to_string(i))});
    }
    const host::LdapLimits limits{.numbers = SIZE_MAX, .rows = SIZE_MAX, .answerBytes = SIZE_MAX};
    int calls = 0;
    host::LdapPeople all("", 0, limits, [&] { ++calls; });
    const Clock::time_point begin = Clock::now();
    EXPECT_TRUE(all.add(person));
    EXPECT_LT(Clock::now() - begin, 5s);
    EXPECT_EQ(all.takeRows().size(), numbers.size());

    host::LdapPeople stopped("", 0, limits, [&, left = calls / 2]() mutable {
        if (--left == 0) {
            throw host::Stopped();
        }
    });
    EXPECT_THROW(stopped.add(person), host::Stopped);
    EXPECT_TRUE(stopped.takeRows().empty());
}

TEST(LdapServer, FastTypingIsAnsweredForTheLastKeyOnly) {
    FaultyPeer peer(FaultyPeer::Fault::stall, server().port);
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    for (const bool abandoning : {false, true}) {
        peer.allow(0);
        for (int i = 0; i < 19; ++i) {
            directory->start({"person " + std::to_string(i), 1000}, mustNotCome);
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
        peer.allow(SIZE_MAX);
        EXPECT_THAT(rowsOf(last.get_future().get()), ElementsAre("Person 2042/712042"));
    }
    EXPECT_EQ(peer.connections(), 1);
}

TEST(LdapServer, NothingComesOnceAbandonHasReturned) {
    const auto directory = open(signedIn());
    for (int i = 0; i < 50; ++i) {
        const auto answers = std::make_unique<int>(0); // a later answer touches freed memory
        directory->start({"person 0042", 1000}, [&count = *answers](const LdapAnswer&) { ++count; });
        std::this_thread::sleep_for(std::chrono::microseconds(i % 2 * i * 40)); // so that some come in the middle
        directory->abandon();
        EXPECT_LE(*answers, 1);
    }

    std::promise<void> entered;
    std::atomic<bool> left = false;
    directory->start({"person 0042", 1000}, [&](const LdapAnswer&) {
        entered.set_value();
        std::this_thread::sleep_for(50ms);
        left = true;
    });
    entered.get_future().wait();
    directory->abandon();
    EXPECT_TRUE(left) << "abandon returned while the answer was being given";
}

TEST(LdapServer, TheOlderQueryIsAbandonedOnTheServer) {
    FaultyPeer peer(FaultyPeer::Fault::silent);
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    directory->start({"first", 10}, mustNotCome);
    ASSERT_TRUE(peer.waitFor("first"));
    directory->start({"second", 10}, mustNotCome);
    EXPECT_TRUE(peer.waitFor("\x50\x01\x01")); // AbandonRequest for message 1
    ASSERT_TRUE(peer.waitFor("second"));
    directory->abandon();
    EXPECT_TRUE(peer.waitFor("\x50\x01\x03"));
}

TEST(LdapServer, EveryFailureIsAnsweredInTimeSaysWhatToCheckAndDelaysNoDestruction) {
    using Options = ServerLdapOptions;
    FaultyPeer silent(FaultyPeer::Fault::silent);
    FaultyPeer full(FaultyPeer::Fault::full);
    FaultyPeer stalling(FaultyPeer::Fault::stall, server().port, 3000); // in the middle of a message
    FaultyPeer stallingTls(FaultyPeer::Fault::stall, server().tlsPort, 3000);
    FaultyPeer endless(FaultyPeer::Fault::flood, 0, SIZE_MAX, flood('\x01'));    // entries for the first request
    FaultyPeer chattering(FaultyPeer::Fault::flood, 0, SIZE_MAX, flood('\x77')); // for one that was never made
    const std::string nobody = "127.0.0.1:" + std::to_string(freePort());
    constexpr auto quick = 200ms; // for servers that do not answer
    const struct {
        std::chrono::milliseconds limit;
        Options options;
        std::string problem;
    } cases[] = {
        {20s, with(signedIn(), &Options::password, "wrong"), "bind_dn and password"},
        {20s, with(signedIn(), &Options::base, "dc=elsewhere"), "check [ldap] base"},
        {20s, anonymousAt("ldap://" + nobody), "check that the server runs"},
        {20s, anonymousAt("ldaps://127.0.0.1:" + std::to_string(server().port)), "no TLS with the server"},
        {20s, anonymousAt(server().tlsUrl), "certificate is not trusted: no authority that the system trusts"},
        {20s, with(anonymousAt(server().tlsUrl), &Options::caFile, "/etc/ssl/certs/ca-certificates.crt"),
         "certificate is not trusted: no authority in [ldap] ca_file"},
        {quick, anonymousAt("ldap://host.invalid"), "resolved"},
        {quick, anonymousAt("ldap://" + silent.address()), "time limit of 200 ms"},
        {quick, anonymousAt("ldap://" + stalling.address()), "time limit of 200 ms"},
        {quick, with(anonymousAt("ldaps://" + stallingTls.address()), &Options::verify, false), "no complete answer"},
        {quick, with(signedIn(), &Options::url, "ldap://" + silent.address()), "while signing in"},
        {quick, with(anonymousAt("ldap://" + silent.address()), &Options::startTls, true), "for TLS"},
        {quick, anonymousAt("ldaps://" + silent.address()), "no TLS handshake"},
        {quick, anonymousAt("ldap://" + full.address()), "cannot connect"},
        {quick, anonymousAt("ldap://" + endless.address()), "time limit of 200 ms"},
        {quick, with(signedIn(), &Options::url, "ldap://" + chattering.address()), "while signing in"},
    };
    for (const auto& [limit, chosen, problem] : cases) {
        const auto directory = open(with(chosen, &Options::timeLimit, limit));
        for (int attempt = 0; attempt < 2; ++attempt) {
            const Clock::time_point begin = Clock::now();
            const LdapAnswer answer = ask(*directory, "person");
            EXPECT_LT(Clock::now() - begin, limit + prompt) << chosen.url;
            EXPECT_FALSE(answer.succeeded) << chosen.url;
            EXPECT_THAT(answer.problem, HasSubstr(problem));
            EXPECT_THAT(answer.problem, testing::Not(HasSubstr("wrong")));
        }
        auto waiting = open(chosen);
        waiting->start({"person", 10}, [](const LdapAnswer&) {});
        std::this_thread::sleep_for(20ms); // mostly until it waits for the network
        const Clock::time_point begin = Clock::now();
        waiting.reset();
        EXPECT_LT(Clock::now() - begin, prompt) << chosen.url;
    }
}

TEST(LdapServer, ARefusedPasswordIsNotTriedAgainForAWhileThatGrows) {
    FaultyPeer peer(FaultyPeer::Fault::cut, server().port);
    auto wrong = with(signedIn(), &ServerLdapOptions::password, "wrong");
    wrong.url = "ldap://" + peer.address();
    const auto directory = open(wrong);
    EXPECT_THAT(ask(*directory, "per").problem, testing::EndsWith("no sign-in is tried for 1 minute"));
    for (const std::string& key : {"pers"s, "perso"s, "person"s}) {
        EXPECT_THAT(ask(*directory, key).problem, HasSubstr("no sign-in is tried for "));
    }
    EXPECT_EQ(peer.connections(), 1);

    host::SignInPause pause;
    Clock::time_point now = Clock::now();
    std::vector<int> minutes;
    for (int refusal = 0; refusal < 5; ++refusal) {
        EXPECT_EQ(pause.left(now), 0s);
        const auto given = pause.refused(now);
        minutes.push_back(static_cast<int>(given.count()));
        EXPECT_EQ(pause.left(now + given - 1ms), 1s);
        now += given;
    }
    EXPECT_THAT(minutes, ElementsAre(1, 4, 16, 60, 60));
    pause.accepted();
    EXPECT_EQ(pause.refused(now), 1min);
}

TEST(LdapServer, ABrokenConnectionIsMadeAgain) {
    FaultyPeer peer(FaultyPeer::Fault::cut, server().port, 2000); // in the middle of an entry
    const auto directory = open(anonymousAt("ldap://" + peer.address()));
    const LdapAnswer broken = ask(*directory, "person 00");
    EXPECT_FALSE(broken.succeeded);
    EXPECT_THAT(broken.problem, HasSubstr("closed the connection"));
    EXPECT_TRUE(broken.rows.empty());

    peer.allow(SIZE_MAX);
    EXPECT_EQ(ask(*directory, "person 00").rows.size(), 147U);
    EXPECT_EQ(ask(*directory, "person 00").rows.size(), 147U);
    EXPECT_EQ(peer.connections(), 2); // kept between queries
    peer.cutNow();
    EXPECT_EQ(ask(*directory, "person 00").rows.size(), 147U); // whether the cut comes before the query or within it
    EXPECT_EQ(peer.connections(), 3);
}

TEST(LdapServer, AnExceptionFailsTheAnswerAndTheWorkerGoesOn) {
    FaultyPeer peer(FaultyPeer::Fault::cut, server().port);
    const std::vector<std::function<void()>> exceptions = {
        [] { throw std::bad_alloc(); }, [] { throw std::runtime_error("an accident"); }, [] { throw 1; }};
    std::size_t next = 0;
    const auto directory = host::makeServerLdap(anonymousAt("ldap://" + peer.address()), [&](const std::string& line) {
        if (line.ends_with("connecting again")) { // in the midst of asking
            exceptions[next]();
        }
    });
    for (const std::string& words : {"no memory"s, "an accident"s, "without a description"s}) {
        peer.allow(SIZE_MAX);
        EXPECT_EQ(ask(*directory, "person 00").rows.size(), 147U);
        peer.allow(1);
        const LdapAnswer failed = ask(*directory, "person 00");
        EXPECT_FALSE(failed.succeeded);
        EXPECT_THAT(failed.problem, HasSubstr(words));

        std::promise<void> entered;
        directory->start({"", 0}, [&](const LdapAnswer&) {
            entered.set_value();
            exceptions[next]();
        });
        entered.get_future().wait();
        directory->abandon();
        ++next;
    }
}

TEST(LdapServer, TlsIsSpokenToAServerWhoseCertificateIsTrusted) {
    for (const bool startTls : {false, true}) {
        for (const bool verify : {false, true}) {
            ServerLdapOptions chosen = anonymousAt(startTls ? server().url : server().tlsUrl);
            chosen.startTls = startTls;
            chosen.verify = verify;
            chosen.caFile = verify ? server().folder.path() / "server.pem" : "";
            EXPECT_EQ(ask(*open(chosen), "person 00").rows.size(), 147U) << startTls << verify;
        }
    }
}

TEST(LdapPeople, BetterMatchesComeFirstAndOtherwiseEverybodyAsReceived) {
    const auto rowsFor = [](const std::string& key) {
        host::LdapPeople people(key, 0, {}, [] {});
        for (const auto& [name, number] :
             {std::pair("Hanna", "15"), {"Ann O'Hara", "51"}, {"Jo Ann", "+5"}, {"Di", "75"}}) {
            EXPECT_TRUE(people.add({{name}, {{number}, {"9"}}}));
        }
        return rowsOf({true, people.takeRows(), ""});
    };
    EXPECT_EQ(rowsFor("ann"), (Rows{"Ann O'Hara/51", "Ann O'Hara/9", "Jo Ann/+5", "Jo Ann/9", "Hanna/15", "Hanna/9",
                                    "Di/75", "Di/9"})); // Di for an attribute that is not shown
    EXPECT_EQ(rowsFor("5"),
              (Rows{"Ann O'Hara/51", "Ann O'Hara/9", "Jo Ann/+5", "Jo Ann/9", "Hanna/15", "Hanna/9", "Di/75", "Di/9"}));
    EXPECT_EQ(rowsFor("75"), (Rows{"Di/75", "Di/9"}));
}

TEST(LdapFilter, WhatMeansSomethingInAFilterOrIsNotUtf8IsEscaped) {
    EXPECT_EQ(host::escapeFilterValue(std::string_view("a*(b)\\\0\u00E9&|!=", 13)), R"(a\2a\28b\29\5c\00)"
                                                                                    "\u00E9&|!=");
    EXPECT_EQ(host::escapeFilterValue("\xFFx\xC3(\xED\xA0\x80\xF0\x9F\x98"), R"(\ffx\c3\28\ed\a0\80\f0\9f\98)");
    EXPECT_EQ(host::numberFilter("(|(a=*%k*)(b=100%%*%k))", "*1#"), R"((|(a=*\2a*1*#*)(b=100%*\2a*1*#)))");
    EXPECT_EQ(host::nameFilter("(cn=*%k*)", "o'neil, ann*"), R"((&(cn=*o'neil*)(cn=*ann\2a*)))");
    EXPECT_EQ(host::nameFilter("(cn=*%k*)", "jo mueller"), "(&(cn=*jo*)(|(cn=*mueller*)(cn=*müller*)))");
    EXPECT_EQ(host::nameFilter("(cn=*%k*)", "øl"), "(|(cn=*øl*)(cn=*oel*)(cn=*ol*))");
    EXPECT_LT(host::nameFilter("(cn=*%k*)", "aeoeaeoeaeoeaeoe").size(), 1'000U);
    host::text::setDiallingRules({"44", "0", "00"});
    EXPECT_EQ(host::numberFilter("(a=*%k*)", "02"), "(|(a=*0*2*)(a=*4*4*2*))");
    EXPECT_EQ(host::numberFilter("(a=*%k*)", "00442"), "(|(a=*0*0*4*4*2*)(a=*4*4*2*)(a=*0*2*))");
    EXPECT_EQ(host::numberFilter("(a=*%k*)", "7"), "(a=*7*)");
    host::text::setDiallingRules({});
}

TEST(LdapSettings, MistakesAreNamedAndNoServerIsUsed) {
    std::vector<std::string> problems;
    const auto read = [&](const std::string& lines) {
        const std::filesystem::path file = testing::TempDir() + "ldap_settings.ini";
        std::ofstream(file) << "[ldap]\n" << (lines.starts_with("url") ? "" : "url = ldap://h\n") << lines;
        problems.clear();
        return host::readServerLdapOptions(file, problems);
    };
    const auto good = read("starttls = on\nverify = off\nscope = one\nbind_dn = cn=me\npassword = p\n"
                           "name_attributes = displayName , cn\nsize_limit = 0\ntime_limit_ms = 1500\n"
                           "numbers_limit = 3\nanswer_limit_kb = 2\n");
    ASSERT_TRUE(good) << testing::PrintToString(problems);
    EXPECT_TRUE(good->startTls && !good->verify && good->scope == host::LdapScope::one && good->sizeLimit == 0);
    EXPECT_EQ(good->timeLimit, 1500ms);
    EXPECT_TRUE(good->limits.numbers == 3 && good->limits.answerBytes == 2048);
    EXPECT_EQ(good->limits.rows, host::LdapLimits().rows);
    EXPECT_THAT(good->nameAttributes, ElementsAre("displayName", "cn"));
    EXPECT_TRUE(good->detailAttributes.empty());
    const auto ready = read("schema = enterprise\nnumber_attributes = ipPhone\n");
    ASSERT_TRUE(ready) << testing::PrintToString(problems);
    EXPECT_THAT(ready->numberAttributes, ElementsAre("ipPhone"));
    EXPECT_THAT(ready->detailAttributes, testing::Contains("department"));

    const Rows mistakes = {"url = http://h",
                           "url = ldap://h/dc=x",
                           "url =",
                           "starttls = perhaps",
                           "scope = all",
                           "schema = mine",
                           "ca_file = /no/such/file",
                           "password = p",
                           "name_attributes = cn,,sn",
                           "number_attributes = a)(b",
                           "size_limit = -1",
                           "row_limit = 0",
                           "entry_limit_kb = 1000000",
                           "time_limit_ms = 0",
                           "network_timeout_ms = 5s",
                           "name_filter = (cn=*)",
                           "name_filter = (%k=a)",
                           "name_filter = (cn=%x%k)",
                           "number_filter = (&(cn=%k)",
                           "number_filter = %k"};
    for (const std::string& line : mistakes) {
        EXPECT_FALSE(read(line + "\n")) << line;
        const std::string key = line.starts_with("password") ? "bind_dn" : line.substr(0, line.find(' '));
        ASSERT_EQ(problems.size(), 1U) << line;
        EXPECT_THAT(problems.front(), HasSubstr(": [ldap] " + key + ": ")) << line;
        EXPECT_THAT(problems.front(), HasSubstr("ldap_settings.ini:"));
    }
}

} // namespace
