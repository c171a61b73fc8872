// Buddies from a file, and the files that a phone opens by itself.

#include "host/Phone.h"
#include "host/contacts/PresenceFile.h"
#include "host/files/SettingsCheck.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "tests/support/SteppedPhone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
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
            {"name": "b", "type": 2, "value": ""}, {"name": "c", "type": 2, "value": "33"},
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
    EXPECT_EQ(known->numbers, (std::vector<host::ContactNumber>{{"+493012"}, {"33"}}))
        << "the row's and the others that match";
    EXPECT_EQ(known->facts.size(), 7U) << "three informations and the four attributes that are not empty";
    EXPECT_FALSE(file.find({"Zoë Ångström", "44"}));
    std::string attributes;
    for (const Attribute& each : info.listAttr) {
        attributes += each.strAttrName + (each.iType == ATTRIBUTE_TYPE_PHONE ? " phone " : " ") + each.strValue + "; ";
    }
    EXPECT_EQ(attributes, "mail 77@example.com; a phone +493012; b phone ; c phone 33; d phone 44; ");
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
    const char* const reasons[] = {"2: is no object",      "3: \"id\" is missing", "4: \"id\" is not",
                                   "5: the id 1 is taken", "6: \"id\" is not",     "7: \"name\" is not",
                                   "8: \"attributes\" is", "9: an attribute is",   "10: \"extension 7\" is no number",
                                   "11: \"info\" is not"};
    ASSERT_EQ(problems.size(), std::size(reasons));
    for (std::size_t i = 0; i < problems.size(); ++i) {
        EXPECT_NE(problems[i].find(std::string("b.json:entry ") + reasons[i]), std::string::npos) << problems[i];
    }
    write("[{\"id\": 1},");
    EXPECT_EQ(idsOf(file, ""), "failed");
    EXPECT_EQ(problems.size(), std::size(reasons) + 1);
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
    const std::string ini = "; [x]\n[LDAP]\nurl = x\n[ldap]\nverfy = off\n  more = x\nxyz = 1\n[features]\nMode=1\n";
    const auto check =
        host::checkSettings(ini, "f", {{"features", {"FeaturesRecentCallEnable"}}, {"ldap", {"mode", "verify"}}});
    EXPECT_THAT(check.problems,
                testing::ElementsAre("f:2: [LDAP] is no known section; did you mean [ldap]?",
                                     "f:5: verfy is no setting of [ldap]; did you mean verify?",
                                     "f:7: xyz is no setting of [ldap]; known are mode, verify",
                                     "f:9: Mode is no setting of [features]; known are FeaturesRecentCallEnable"));
    EXPECT_THAT(check.doubtful, testing::ElementsAre("features", "ldap"));
}

} // namespace
