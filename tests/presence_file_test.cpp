// Buddies from a file, and the files that a phone opens by itself.

#include "host/Phone.h"
#include "host/PresenceFile.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "tests/support/Files.h"
#include "tests/support/SteppedPhone.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
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

TEST(PresenceFile, ABuddyMatchesByItsNameAndFirstThreeNumbers) {
    const test::TempRoot root;
    test::writeFile(root.path() / "b.json", R"([
        {"id": 4, "name": "Zoë Ångström", "info1": "i1", "info2": "i2", "info": 6, "attributes": [
            {"name": "mail", "type": 1, "value": "77@example.com"}, {"name": "a", "type": 2, "value": "+49 (30) 12"},
            {"name": "b", "type": 2, "value": ""}, {"name": "c", "type": 2, "value": "33"},
            {"name": "d", "type": 2, "value": "44"}]},
        {"id": 2}])");
    std::vector<std::string> problems;
    host::PresenceFile file(root.path() / "b.json", [&](const std::string& problem) { problems.push_back(problem); });
    const struct {
        const char* key;
        const char* ids;
    } cases[] = {{"", "4 2 "}, {"zoe", "4 "}, {"963", "4 "}, {"4930", "4 "}, {"33", "4 "},
                 {"44", ""},   {"77", ""},    {"mail", ""},  {"ström", "4 "}};
    for (const auto& [key, ids] : cases) {
        EXPECT_EQ(idsOf(file, key), ids) << key;
    }
    PresenceInfo info;
    info.iContactId = 4;
    ASSERT_NE(file.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0), 0);
    EXPECT_EQ(info.strName + info.strInfo1 + info.strInfo2 + std::to_string(info.iInfo), "Zoë Ångströmi1i26");
    std::string attributes;
    for (const Attribute& attribute : info.listAttr) {
        attributes += attribute.strAttrName + std::to_string(attribute.iType) + attribute.strValue + " ";
    }
    EXPECT_EQ(attributes, "mail177@example.com a2+493012 b2 c233 d244 ");
    info.iContactId = 3;
    EXPECT_EQ(file.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0), 0);
    EXPECT_TRUE(problems.empty());
}

TEST(PresenceFile, WhatIsWrongIsReportedOnceAndTheRestIsKept) {
    const test::TempRoot root;
    std::vector<std::string> problems;
    host::PresenceFile file(root.path() / "b.json", [&](const std::string& problem) { problems.push_back(problem); });
    EXPECT_EQ(idsOf(file, ""), "failed") << "no file";
    EXPECT_EQ(problems.size(), 1U);
    problems.clear();
    test::writeFile(root.path() / "b.json", R"([{"id": 1}, 5, {"name": "x"}, {"id": "1"}, {"id": 1}, {"id": 3000000000},
        {"id": 6, "name": 7}, {"id": 7, "attributes": {}}, {"id": 8, "attributes": [1]},
        {"id": 9, "attributes": [{"type": 2, "value": "extension 7"}]}, {"id": 10, "info": 1.5}, {"id": 11}])");
    EXPECT_EQ(idsOf(file, ""), "1 9 11 ");
    EXPECT_EQ(idsOf(file, ""), "1 9 11 ");
    const char* const reasons[] = {"entry 2: is no object",
                                   "entry 3: \"id\" is missing",
                                   "entry 4: \"id\" is not a whole number",
                                   "entry 5: the id 1 is taken",
                                   "entry 6: \"id\" is not a whole number",
                                   "entry 7: \"name\" is not a string",
                                   "entry 8: \"attributes\" is no array",
                                   "entry 9: an attribute is no object",
                                   "entry 10: \"extension 7\" is no number",
                                   "entry 11: \"info\" is not a whole number"};
    ASSERT_EQ(problems.size(), std::size(reasons));
    for (std::size_t i = 0; i < problems.size(); ++i) {
        EXPECT_NE(problems[i].find(std::string("b.json:") + reasons[i]), std::string::npos) << problems[i];
    }
    for (const char* broken : {"[{\"id\": 1},", "{\"id\": 1}", ""}) {
        test::writeFile(root.path() / "b.json", broken);
        problems.clear();
        EXPECT_EQ(idsOf(file, ""), "failed") << broken;
        EXPECT_EQ(problems.size(), 1U) << broken;
    }
    test::writeFile(root.path() / "b.json", R"([{"id": 12}])");
    EXPECT_EQ(idsOf(file, ""), "12 ");
}

TEST(PhoneFiles, EachSourceReadsItsOwnFileBelowTheRoot) {
    const test::TempRoot root;
    const auto contacts = root.path() / "config/contacts";
    for (const char* name : {"local_directory", "remote_directory", "broadsoft_directory", "ldap_directory"}) {
        test::writeFile(contacts / (std::string(name) + ".csv"), std::string("name,number\n") + name + ",51\n");
    }
    test::writeFile(contacts / "call_log.csv", "time,direction,name,number\n2026-01-02T03:04:05,out,call_log,52\n");
    test::writeFile(contacts / "presence_buddies.json", R"([{"id": 7, "name": "buddy"}, {}])");
    test::writeFile(root.path() / "config/data/phone.ini", "[ldap]\nmode = embedded\ndelay_ms = 40\n");
    const host::PhoneOptions options{
        .root = root.path(), .driver = host::Driver::stepped, .ldapDelay = {}, .contactFiles = true, .log = {}};
    host::Phone phone(options);
    const std::pair<bool (*)(WideseekItemListData*), std::string> functions[] = {
        {Directory_LocalDirWideseek, "local_directory"},
        {Directory_LocalLogWideseek, "call_log"},
        {RemoteDir_Wideseek, "remote_directory"},
        {BSFTDir_Wideseek, "broadsoft_directory"}};
    for (const auto& [function, name] : functions) {
        WideseekItemListData query;
        query.strKey = "5";
        EXPECT_TRUE(function(&query)) << name;
        ASSERT_EQ(query.listResult.Count(), 1U) << name;
        EXPECT_EQ(query.listResult.Begin()->value.strName, name);
    }
    OxVector<GeneralDirItemData> calls;
    EXPECT_EQ(Directory_SearchCallLogRecentOutCall(calls, 0, 5), 1);
    EXPECT_EQ(Directory_SearchCallLogRecentOutCall(calls, -1, 5), -1);
    ASSERT_NE(CPresenceContactManager::GetInstance(), nullptr);
    EXPECT_EQ(idsOf(*CPresenceContactManager::GetInstance(), "buddy"), "7 ");
    EXPECT_EQ(phone.problems().size(), 1U);

    test::Screen receiver;
    Ldap_SearchAsync("5", 0, 9, &receiver, nullptr);
    phone.kernel().moveTime(39ms);
    EXPECT_TRUE(phone.kernel().ready().empty());
    phone.kernel().moveTime(1ms);
    EXPECT_EQ(phone.kernel().ready().size(), 1U) << "the configured delay";
}

TEST(PhoneFiles, AnUnusableLdapConfigurationIsAProblemAndEveryQueryFails) {
    const test::TempRoot root;
    for (const char* section : {"mode = no", "mode = server", "mode = server\nurl = http://x",
                                "mode = server\nurl = ldap://localhost\nbase = dc=x\nscope = some"}) {
        test::writeFile(root.path() / "config/data/phone.ini", std::string("[ldap]\n") + section + "\n");
        host::Phone phone(
            {.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = {}, .contactFiles = true, .log = {}});
        EXPECT_EQ(phone.problems().size(), 1U) << section;
        test::Screen receiver;
        EXPECT_EQ(Ldap_SearchAsync("5", 0, 9, &receiver, nullptr), 0) << section;
        EXPECT_EQ(phone.kernel().pending(), 1U) << "the failure arrives";
    }
}

} // namespace
