// Buddies from a file, and the files that a phone opens by itself.

#include "host/Phone.h"
#include "host/contacts/PresenceFile.h"
#include "host/settings/SettingsCheck.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace std::chrono_literals;

// The ids of the buddies that match, or "failed".
std::string idsOf(CPresenceContactManager& manager, const std::string& key) {
    ContactBuddyListData found;
    int state = 1;
    if (!manager.GetListByGroupId(&found, state, 0, key, ATTR_TYPE_SEARCH)) {
        return "failed";
    }
    std::string ids;
    for (const int id : found.listContactId) {
        ids += std::to_string(id) + " ";
    }
    return ids;
}

class PresenceFile : public testing::Test {
protected:
    test::TempRoot root;
    std::vector<std::string> problems;
    host::PresenceFile file{root.path() / "b.json", [this](const std::string& text) { problems.push_back(text); }};

    void write(const char* text) { root.write("b.json", text); }
};

TEST_F(PresenceFile, ABuddyMatchesByItsNameAndFirstThreeNumbers) {
    write(R"([
        {"id": 4, "name": "Zoë Ångström", "info1": "i1", "info2": "i2", "info": 6, "attributes": [
            {"name": "mail", "type": 1, "value": "77@example.com"}, {"name": "a", "type": 2, "value": "+49 (30) 12"},
            {"name": "b", "type": 2, "value": ""}, {"name": "mobile", "type": 2, "value": "33"},
            {"name": "d", "type": 2, "value": "44"}]},
        {"id": 2}])");
    const std::pair<const char*, const char*> cases[] = {{"", "4 2 "}, {"zoe", "4 "}, {"963", "4 "}, {"4930", "4 "},
                                                         {"33", "4 "}, {"44", ""},    {"77", ""},    {"mail", ""}};
    for (const auto& [key, ids] : cases) {
        EXPECT_EQ(idsOf(file, key), ids) << key;
    }
    PresenceInfo info;
    info.iContactId = 4;
    ASSERT_NE(file.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0), 0);
    EXPECT_EQ(std::tie(info.strName, info.strInfo1, info.strInfo2), std::tuple("Zoë Ångström", "i1", "i2"));
    EXPECT_EQ(info.iInfo, 6);
    const auto known = file.find({"Zoë Ångström", "33"});
    ASSERT_TRUE(known);
    EXPECT_EQ(known->numbers, (std::vector<host::ContactNumber>{{"+493012"}, {"33", host::NumberKind::mobile}}))
        << "the row's and the others that match";
    EXPECT_EQ(known->facts.size(), 6U) << "three informations and the attributes that tell more than a number's kind";
    EXPECT_FALSE(file.find({"Zoë Ångström", "44"}));
    std::string attributes;
    for (const Attribute& each : info.listAttr) {
        attributes += each.strAttrName + (each.iType == ATTRIBUTE_TYPE_PHONE ? " phone " : " ") + each.strValue + "; ";
    }
    EXPECT_EQ(attributes, "mail 77@example.com; a phone +493012; b phone ; mobile phone 33; d phone 44; ");
    info.iContactId = 3;
    EXPECT_EQ(file.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0), 0);
    EXPECT_TRUE(problems.empty());
}

TEST_F(PresenceFile, WhatIsWrongIsReportedOnceAndTheRestIsKept) {
    write(R"([{"id": 1}, 5, {"name": "x"}, {"id": "1"}, {"id": 1}, {"id": 3000000000},
        {"id": 6, "name": 7}, {"id": 7, "attributes": {}}, {"id": 8, "attributes": [1]},
        {"id": 9, "attributes": [{"type": 2, "value": "extension 7"}]}, {"id": 10, "info": 1.5}, {"id": 11}])");
    EXPECT_EQ(idsOf(file, ""), "1 9 11 ");
    EXPECT_EQ(idsOf(file, ""), "1 9 11 ");
    const char* const reasons[] = {
        "2: is no object",      "3: \"id\" is missing", "4: \"id\" is not",
        "5: the id 1 is taken", "6: \"id\" is not",     "7: \"name\" is not",
        "8: \"attributes\" is", "9: an attribute is",   "10: \"extension 7\" is not a number",
        "11: \"info\" is not"};
    ASSERT_EQ(problems.size(), std::size(reasons));
    for (std::size_t i = 0; i < problems.size(); ++i) {
        EXPECT_NE(problems[i].find(std::string("b.json:entry ") + reasons[i]), std::string::npos) << problems[i];
    }
    const std::pair<const char*, const char*> unreadable[] = {
        {"[{\"id\": 1},\n", "b.json:2: is not JSON (unexpected end of input; "},
        {"[{\"id\": 1e999}]", "b.json:1: is not JSON (number overflow parsing '1e999'); mend the file there"},
        {"[\n{\"name\": \"M\xFCller\"}]", "b.json:2: is not UTF-8 text; save the file as UTF-8"},
        {"[\xC3\xBC]", "b.json:1: is not JSON (invalid literal"}};
    for (const auto& [bytes, reason] : unreadable) {
        write(bytes);
        EXPECT_EQ(idsOf(file, ""), "failed");
        EXPECT_NE(problems.back().find(reason), std::string::npos) << problems.back();
    }
    EXPECT_EQ(problems.size(), std::size(reasons) + std::size(unreadable));
    write(R"([{"id": 12}])");
    EXPECT_EQ(idsOf(file, ""), "12 ");
}

TEST(PhoneFiles, ThePhoneTakesBuddiesRecentCallsAndTheKindOfLdapFromItsFiles) {
    const std::string server = "mode = server\nurl = ldap://localhost\nbase = dc=x\nscope = some";
    const std::string misspelt = "mode = embedded\nstart_tls = on";
    for (const std::string& ldap : {std::string("mode = embedded\ndelay_ms = 40"), std::string("mode = no"), server,
                                    misspelt, std::string("[LDAP]\nmode = server")}) {
        const bool usable = ldap.ends_with("40");
        SCOPED_TRACE(ldap);
        const test::TempRoot root;
        root.write("config/contacts/call_log.csv", "time,direction,name,number\n2026-01-02T03:04:05,out,Ann,52\n");
        root.write("config/contacts/presence_buddies.json", R"([{"id": 7, "name": "buddy"}])");
        root.write("config/data/phone.ini", "[ldap]\n" + ldap + "\n");
        test::Screen screen;
        host::Phone phone(
            {.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = {}, .contactFiles = true, .log = {}});
        OxVector<GeneralDirItemData> calls;
        EXPECT_EQ(Directory_SearchCallLogRecentOutCall(calls, 0, 5), 1);
        EXPECT_EQ(idsOf(*CPresenceContactManager::GetInstance(), "buddy"), "7 ");
        EXPECT_EQ(Ldap_SearchAsync("5", 0, 9, &screen, nullptr) != 0, usable);
        EXPECT_EQ(phone.kernel().nextDue(), usable ? 40ms : 0ms) << "a failure arrives at once";
        EXPECT_EQ(phone.problems().empty(), usable);
    }
}

TEST(PhoneFiles, ASettingThatNobodyKnowsIsReportedAndItsSectionIsInDoubt) {
    using Problems = std::vector<std::string>;
    const struct {
        std::string ini;
        Problems problems;
        std::set<std::string> doubtful;
    } cases[] = {
        {"; [x]\n[ldap]\nmode = a\n  verfy = goes on\n\tverify\n#c\nverify : b\n", {}, {}},
        {"[LDAP]\nurl = x\n", {"1: [LDAP] is no known section; did you mean [ldap]?"}, {"ldap"}},
        {"[ldpa]\n", {"1: [ldpa] is no known section; did you mean [ldap]?"}, {"ldap"}},
        {"[other]\nverify = 1\n", {"1: [other] is no known section; known are features, ldap"}, {}},
        {"\xEF\xBB\xBF[ldap]\n verfy = off\n", {"2: verfy is no setting of [ldap]; did you mean verify?"}, {"ldap"}},
        {"[ldap]\nxyz = 1", {"2: xyz is no setting of [ldap]; known are mode, verify"}, {"ldap"}},
        {"[features]\nEnable = 1\nMode = 1\n",
         {"2: Enable is no setting of [features]; known are RecentCalls",
          "3: Mode is no setting of [features]; did you mean mode of [ldap]?"},
         {"features", "ldap"}},
        {"x = 1\nverify = off\n",
         {"1: x stands in no section; put it below one",
          "2: verify stands in no section; did you mean verify of [ldap]?"},
         {"ldap"}},
        {"[ldap\nmode = a\n",
         {"1: [ldap begins no section; write [ldap]", "2: mode stands in no section; did you mean mode of [ldap]?"},
         {"ldap"}},
        {"[features]\nRecentCalls=1\n [ldap]\n",
         {"3: [ldap] goes on with the line above; begin it without blanks"},
         {"ldap"}},
        {"[ldap] mode = b\n[ldap] ; fine\nverify\n",
         {"1: mode = b behind [ldap] does not count; give it a line of its own",
          "3: verify has no value; write verify = ..."},
         {"ldap"}},
    };
    for (auto [ini, problems, doubtful] : cases) {
        const auto check = host::checkSettings(ini, "f", {{"features", {"RecentCalls"}}, {"ldap", {"mode", "verify"}}});
        for (std::string& problem : problems) {
            problem.insert(0, "f:");
        }
        EXPECT_EQ(check.problems, problems) << ini;
        EXPECT_EQ(check.doubtful, doubtful) << ini;
    }
    std::string many = "[features]\n";
    for (int i = 0; i < 1000; ++i) {
        many += std::string(1000, 'x') + "\n";
    }
    const auto check = host::checkSettings(many + "verify = off\n", "f", {{"features", {}}, {"ldap", {"verify"}}});
    EXPECT_EQ(check.problems.size(), 101U);
    EXPECT_LT(check.problems[0].size(), 700U);
    EXPECT_TRUE(check.doubtful.contains("ldap"));
}

} // namespace
