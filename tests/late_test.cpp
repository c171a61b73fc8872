// Answers that come late, buddies, and recent calls.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/Presence.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace test;

const std::string localId = "local_directory_search";
const std::string ldapId = "ldap_search";
const std::string remoteId = "remote_directory_search";
const std::string buddiesId = "BroadSoft_UC_search";

struct LdapPhone : SteppedPhone {
    LdapPhone() : SteppedPhone({localId, ldapId, remoteId}) {
        local->contacts = {{"Ann", {"51"}}};
        remote->contacts = {{"Rob", {"59"}}};
    }
    Screen screen;
};

const std::vector<Contact> ldapPeople = {{"Ann", {"51"}}, {"Lea", {"55"}}, {"Nil", {""}}};

TEST(LateAnswer, BeforeTheTimerGivesOnePageInConfiguredOrder) {
    LdapPhone phone;
    phone.type("5", phone.screen);
    phone.run(99ms);
    EXPECT_EQ(phone.screen.count(), 0U);
    phone.answerLdap(ldapPeople);
    EXPECT_EQ(phone.screen.rows(), "Ann 51, Lea 55, Rob 59");
    phone.run(10s);
    EXPECT_EQ(phone.screen.count(), 1U);
}

TEST(LateAnswer, AfterTheTimerGivesAPageAt100msAndOneMoreWithLdapLast) {
    LdapPhone phone;
    phone.type(" +5", phone.screen);
    phone.run(99ms);
    EXPECT_EQ(phone.screen.count(), 0U);
    phone.run(1ms);
    ASSERT_EQ(phone.screen.count(), 1U);
    EXPECT_EQ(phone.screen.rows(), "Ann 51, Rob 59");
    EXPECT_EQ(phone.screen.pages.back().strKey, " +5");
    phone.run(10s);
    EXPECT_EQ(phone.screen.count(), 1U);
    phone.answerLdap(ldapPeople);
    ASSERT_EQ(phone.screen.count(), 2U);
    EXPECT_EQ(phone.screen.rows(), "Ann 51, Rob 59, Lea 55");
    EXPECT_EQ(phone.screen.pages.back().strKey, "5") << "a late page reports the converted key";
    phone.run(10s);
    EXPECT_EQ(phone.screen.count(), 2U);
}

TEST(LateAnswer, AFilledPageDoesNotWaitAndNarrowingSendsAtOnce) {
    LdapPhone phone;
    phone.type("5", phone.screen, 0, 1);
    EXPECT_EQ(phone.screen.rows(), "Ann 51");
    phone.answerLdap(ldapPeople);
    EXPECT_EQ(phone.screen.pages.back().iTotalCount, 3) << "one more page, with the whole count";
    phone.type("51", phone.screen);
    EXPECT_EQ(phone.screen.rows(), "Ann 51");
    EXPECT_EQ(phone.ldap->asked, (std::vector<std::string>{"5", "51"})) << "LDAP alone is asked again";
    EXPECT_EQ(phone.local->asked.size(), 1U);
    phone.answerLdap({{"Lea", {"515"}}, {"Rob", {"59"}}});
    EXPECT_EQ(phone.screen.rows(), "Ann 51, Lea 515, Rob 59") << "what narrowing dropped may come again";
}

TEST(Newer, ARequestThatThePhoneDoesNotTakeLeavesNoOtherKeysRowsBehind) {
    LdapPhone phone;
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    const auto request = [&](const std::string& key) {
        const NS_WS::CWideseekAction::CHandOver handOver(*action, &phone.screen);
        action->SetSearchCount(10);
        action->SetKey(key);
        return handOver.GetSerial();
    };
    request("5");
    action->Exec();
    phone.answerLdap({});
    phone.phone.setInterruption([&](std::string_view function) {
        if (function == "Ldap_SearchAsync") {
            action->TakeBack(request("9"));
        }
    });
    request("51");
    action->Exec(); // breaks off narrowing
    phone.phone.setInterruption(nullptr);
    phone.answerLdap({});
    EXPECT_EQ(phone.screen.rows(), "Ann 51, Rob 59");
    EXPECT_EQ(phone.screen.pages.back().strKey, "5") << "the page before";
    request("51");
    action->Exec();
    phone.answerLdap({});
    EXPECT_EQ(phone.screen.rows(), "Ann 51");
    Wideseek_DestroySearchAction(action);
}

// ---- buddies ----

class Buddies final : public CPresenceContactManager {
public:
    std::map<int, PresenceInfo> details;
    std::list<int> found;
    bool succeeds = true;

    bool GetListByGroupId(ContactBuddyListData* pList, int& iState, int iGroupId, const std::string& strKey,
                          AttrType eType) override {
        EXPECT_EQ(std::to_string(iState) + std::to_string(iGroupId) + strKey + std::to_string(eType), "1053");
        pList->listContactId = found;
        return succeeds;
    }
    int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) override {
        EXPECT_EQ(eType + iFlag, 2);
        const auto it = details.find(info.iContactId);
        if (it == details.end()) {
            return 0;
        }
        info = it->second;
        return 1;
    }
    static PresenceInfo info(const std::string& name, const std::vector<std::pair<int, std::string>>& attributes) {
        PresenceInfo result;
        result.strName = name;
        result.strInfo1 = "i1";
        result.strInfo2 = "i2";
        result.iInfo = 4;
        for (const auto& [type, value] : attributes) {
            result.listAttr.push_back({"", value, type});
        }
        return result;
    }
};

TEST(Presence, GivesARowForEachOfTheFirstThreeNumbers) {
    SteppedPhone phone({localId, buddiesId});
    phone.local->contacts = {{"Known", {"51"}}};
    Buddies buddies;
    buddies.details[1] = Buddies::info("Four", {{2, "51"}, {1, "x"}, {2, "52"}, {3, "y"}, {2, "53"}, {2, "54"}});
    buddies.details[2] = Buddies::info("Gap", {{2, ""}, {2, "55"}, {2, "56"}, {2, "57"}});
    buddies.details[3] = Buddies::info("Same", {{2, "58"}, {2, "58"}});
    buddies.details[4] = Buddies::info("", {{2, "59"}});
    buddies.details[5] = Buddies::info("Known", {{2, "51"}, {1, "5"}});
    buddies.found = {2, 1, 77, 3, 4, 5};
    phone.phone.setPresence(&buddies);
    Screen screen;
    phone.type("5", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "Known 51, Gap 55, Gap 56, Four 51, Four 52, Four 53, Same 58");
    const WideseekItemData& row = screen.pages.back().listItem.back();
    EXPECT_EQ(row.strExtra1 + row.strExtra2 + std::to_string(row.iExtra), "i1i24");
    phone.phone.setPresence(nullptr);
    Wideseek_ResetKey();
    phone.type("5", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "Known 51") << "without a manager the source fails";
    buddies.succeeds = false;
    phone.phone.setPresence(&buddies);
    Wideseek_ResetKey();
    phone.type("5", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "Known 51") << "rows of a failed query are not shown";
}

// ---- recent calls ----

class Calls : public host::RecentCalls {
public:
    std::vector<GeneralDirItemData> list;
    bool fails = false;

    int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& /*error*/) override {
        for (int i = from; i < from + count && i < static_cast<int>(list.size()); ++i) {
            calls.PushBack(new GeneralDirItemData(list[static_cast<std::size_t>(i)]));
        }
        calls.PushBack(nullptr);
        return fails ? -1 : static_cast<int>(list.size());
    }
};

TEST(RecentCalls, FillTheEmptyKeysPageTenAtATime) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"Ann", {"51"}}};
    auto calls = std::make_shared<Calls>();
    for (int i = 0; i < 25; ++i) {
        calls->list.push_back({"N" + std::to_string(i), "5" + std::to_string(i), "x"});
    }
    calls->list[1].strName.clear();
    calls->list[2] = {};
    phone.phone.setRecentCalls(calls);
    Screen screen;
    const auto totals = [&] {
        const WideseekListData& page = screen.pages.back();
        return std::to_string(page.listItem.size()) + " " + std::to_string(page.iSearchCount) + " " +
               std::to_string(page.iTotalCount) + " " + page.strKey;
    };
    for (const int value : {0, 2, -1}) {
        phone.phone.setConfig("FeaturesRecentCallEnable", value);
        phone.type("", screen, 0, 4);
        EXPECT_EQ(totals(), "0 4 0 ") << "off";
    }
    phone.phone.setConfig("FeaturesRecentCallEnable", 1);
    phone.type("  ", screen, 0, 4);
    EXPECT_EQ(totals(), "9 10 25 ");
    EXPECT_TRUE(screen.rows().starts_with("N0 50, 51 51, N3 53"));
    EXPECT_EQ(screen.pages.back().listItem.front().strExtra2, "x");
    phone.type("", screen, 20, 4);
    EXPECT_EQ(totals(), "5 10 25 ");
    phone.type("5", screen);
    EXPECT_EQ(phone.local->asked.back(), "5") << "never a narrowing after the empty key";
    const std::size_t before = screen.count();
    phone.type("", screen, -1, 4);
    EXPECT_EQ(screen.count(), before) << "refused";
    calls->fails = true;
    phone.type("", screen, 0, 4);
    EXPECT_EQ(totals(), "0 10 0 ");

    CallLogSearchListData direct{{{"old", "1"}}, 0, 3, 99};
    EXPECT_FALSE(Wideseek_SearchRecentOutCall(&direct));
    EXPECT_EQ(direct.iTotalCount, 99);
    calls->fails = false;
    EXPECT_TRUE(Wideseek_SearchRecentOutCall(&direct));
    EXPECT_EQ(direct.listItem.size(), 4U) << "every call is kept, behind what was there";
    EXPECT_EQ(direct.iTotalCount, 25);
    EXPECT_FALSE(Wideseek_SearchRecentOutCall(nullptr));
}

TEST(RecentCalls, StayWhenTheTimerOfTheSearchBeforeThemExpires) {
    LdapPhone phone;
    auto calls = std::make_shared<Calls>();
    calls->list.push_back({"N", "5", ""});
    phone.phone.setRecentCalls(calls);
    phone.phone.setConfig("FeaturesRecentCallEnable", 1);
    phone.type("5", phone.screen);
    host::Phone::failAllocation(1);
    phone.type("", phone.screen);
    EXPECT_EQ(phone.screen.count(), 0U) << "no memory for the page";
    phone.run(1s);
    EXPECT_EQ(phone.screen.count(), 0U) << "an empty page in its place would be wrong";
}

} // namespace
