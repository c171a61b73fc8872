// The search by example, and what the oracle (Oracle.h) does not see: the operations that screens seldom use, buddies,
// and what becomes of recent calls.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "platform/Presence.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace {

using namespace test;

// "Ann 51; 5 0+10 of 2"
std::string textOf(const WideseekListData& page) {
    return rowsOf(page) + "; " + page.strKey + " " + std::to_string(page.iFromIndex) + "+" +
           std::to_string(page.iSearchCount) + " of " + std::to_string(page.iTotalCount);
}

struct LdapPhone : SteppedPhone {
    LdapPhone() : SteppedPhone({localId, ldapId, remoteId}) {
        local->contacts = {{"Ann", {"51", "", "52", "51"}, "sales"}};
        remote->contacts = {{"Rob", {"59"}}, {"", {"58"}}, {"Ann", {"52", "53"}}};
    }
    std::string last() const { return screen.pages.empty() ? "-" : textOf(screen.pages.back()); }
    Screen screen;
};

TEST(Search, GivesAPageWhenLdapHasHad100msAndOneMoreWithItsRowsLastWhenItAnswers) {
    LdapPhone phone;
    phone.type(" +5", phone.screen);
    phone.run(99ms);
    EXPECT_EQ(phone.last(), "-");
    phone.run(1ms);
    EXPECT_EQ(phone.last(), "Ann 51, Ann 52, Rob 59, Ann 53;  +5 0+10 of 4");
    const WideseekItemData& row = phone.screen.pages.back().listItem.front();
    EXPECT_EQ(row.strExtra1 + "|" + row.strExtra2 + "|" + std::to_string(row.iExtra), "|sales|-1");
    phone.run(10s);
    phone.answerLdap({{"Ann", {"51"}}, {"Lea", {"55"}}});
    EXPECT_EQ(phone.last(), "Ann 51, Ann 52, Rob 59, Ann 53, Lea 55; 5 0+10 of 5");
    phone.run(10s);
    EXPECT_EQ(phone.screen.count(), 2U);
    EXPECT_EQ(phone.local->asked, std::vector<std::string>{"5"});
}

TEST(Search, ListsWhatNarrowingLeftOnceAndWhatItDroppedAgainWhenLdapAnswers) {
    LdapPhone phone;
    phone.type("5", phone.screen, 0, 1);
    phone.type("59", phone.screen);
    EXPECT_EQ(phone.last(), "Rob 59; 59 0+10 of 1");
    phone.answerLdap({{"Rob", {"59"}}, {"Ann", {"51"}}});
    EXPECT_EQ(phone.last(), "Ann 51, Rob 59; 59 0+10 of 2");
}

TEST(Search, NarrowsContactsWithTheSameNumbersByTheirNames) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"Ann", {"61", "62"}}, {"Bob", {"61", "62"}}};
    Screen screen;
    phone.type("26", screen);
    phone.type("266", screen);
    EXPECT_EQ(screen.rows(), "Ann 61, Ann 62");
}

TEST(Search, ListsTheFirstOfEqualRowsInItsPlaceHoweverManyNamesBeginAlike) {
    SteppedPhone phone({localId, remoteId});
    std::vector<std::string> expected;
    for (const std::size_t alike : {7U, 8U, 70U}) {
        for (const char* which : {"first", "second"}) {
            for (unsigned i = 40; i > 0; --i) {
                const std::string name = std::string(alike, 'a') + std::string(i % 3, '\0') + std::to_string(i);
                phone.local->contacts.push_back({name, {"61"}, which});
                phone.remote->contacts.push_back({name, {"61"}, "third"});
                if (which == std::string("first")) {
                    expected.push_back(name + " first");
                }
            }
        }
    }
    Screen screen;
    for (const char* key : {"6", "61"}) {
        phone.type(key, screen, 0, 0);
        std::vector<std::string> rows;
        for (const WideseekItemData& row : screen.pages.back().listItem) {
            rows.push_back(row.strName + " " + row.strExtra2);
        }
        EXPECT_EQ(rows, expected) << key;
    }
}

TEST(Action, GivesThePageLastCutWhole) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"A", {"51"}}, {"B", {"52"}}};
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(textOf(action->GetResultData()), ";  0+0 of 0");
    Screen screen;
    NS_WS::CWideseekRequest request(&screen);
    request.SetFromIndex(1);
    request.SetSearchCount(1);
    request.SetKey("5");
    action->HandOver(request);
    EXPECT_EQ(action->GetResultData().iFromIndex, 0) << "a position without its key is shown to nobody";
    action->Exec();
    EXPECT_EQ(textOf(action->GetResultData()), "B 52; 5 1+1 of 2");
    Wideseek_DestroySearchAction(action);
    Wideseek_DestroySearchAction(nullptr);
    Wideseek_DestroySearchCBAction(nullptr);
}

TEST(Action, LeavesNoOtherKeysRowsWhenARequestIsTakenBack) {
    LdapPhone phone;
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    const auto request = [&](const std::string& key) {
        NS_WS::CWideseekRequest asked(&phone.screen);
        asked.SetSearchCount(10);
        asked.SetKey(key);
        return action->HandOver(std::move(asked));
    };
    request("5");
    action->Exec();
    phone.answerLdap({});
    phone.phone.setInterruption([&](host::PlatformCall call) {
        if (call == host::PlatformCall{host::PlatformFunction::searchLdap}) {
            action->TakeBack(request("9"));
        }
    });
    request("51");
    action->Exec(); // breaks off narrowing
    phone.phone.setInterruption(nullptr);
    phone.answerLdap({});
    EXPECT_EQ(phone.last(), "Ann 51, Ann 52, Rob 59, Ann 53; 5 0+10 of 4") << "the page before";
    request("51");
    action->Exec();
    phone.answerLdap({});
    EXPECT_EQ(phone.last(), "Ann 51, Ann 52; 51 0+10 of 2");
    Wideseek_DestroySearchAction(action);
}

TEST(Parcel, CarriesACopyOfThePage) {
    const SteppedPhone phone({});
    NS_WS::CWideseekCBData* data = Wideseek_CreateSearchCBAction();
    ASSERT_NE(data, nullptr);
    EXPECT_TRUE(data->Exec());
    data->SetKey("k");
    data->SetTotalCount(7);
    data->AppendResult({"A", "1", "", "", 3});
    const WideseekListData copy = data->GetResultList();
    data->ResetResultList();
    EXPECT_EQ(rowsOf(copy), "A 1");
    EXPECT_EQ(rowsOf(data->GetResultList()) + data->GetKey() + std::to_string(data->GetTotalCount()), "k7");
    Wideseek_DestroySearchCBAction(data);

    host::Phone::failAllocation(2);
    data = Wideseek_CreateSearchCBAction();
    ASSERT_NE(data, nullptr);
    data->SetKey("k");
    data->AppendResult({});
    EXPECT_EQ(data->GetResultListPtr(), nullptr);
    EXPECT_EQ(data->GetFromIndex() + data->GetSearchCount() + data->GetTotalCount(), -3);
    EXPECT_EQ(data->GetKey(), "");
    Wideseek_DestroySearchCBAction(data);
}

TEST(Configuration, AChangeOfItsOwnPartReloadsTheListAndAMissingFileLeavesNoSource) {
    LdapPhone phone;
    const auto rowsAfterChangeOf = [&](int part) {
        phone.phone.announceConfigChange(part);
        phone.run();
        phone.type("59", phone.screen);
        phone.run(1s);
        return phone.screen.rows();
    };
    phone.setSourceList(sourceListOf({localId}));
    EXPECT_EQ(rowsAfterChangeOf(51), "Rob 59");
    EXPECT_EQ(rowsAfterChangeOf(52), "");
    phone.local->contacts = {{"A", {"59"}}};
    std::filesystem::remove(phone.root.path() / "config/data/wideseek.xml");
    EXPECT_EQ(rowsAfterChangeOf(52), "");
    EXPECT_EQ(phone.local->asked.size(), 2U);
    EXPECT_EQ(std::count(phone.log.begin(), phone.log.end(), "Wideseek: begin to reload configure!"), 2);
}

// ---- buddies ----

class Buddies final : public CPresenceContactManager {
public:
    std::map<int, PresenceInfo> details;
    std::list<int> found;
    bool succeeds = true;

    // The attributes: numbers, or other ones behind an "x".
    void add(int id, const std::string& name, const std::vector<std::string>& attributes) {
        PresenceInfo& info = details[id] = {"i1", name, "i2", "", 4, "", {}, true, "", id};
        for (const std::string& value : attributes) {
            info.listAttr.push_back(
                {"", value, value.starts_with("x") ? ATTRIBUTE_TYPE_PHONE - 1 : ATTRIBUTE_TYPE_PHONE});
        }
        found.push_back(id);
    }
    bool GetListByGroupId(ContactBuddyListData* pList, int& iState, int iGroupId, const std::string& strKey,
                          AttrType eType) override {
        EXPECT_EQ(std::tuple(iState, iGroupId, strKey, eType), std::tuple(1, 0, "5", ATTR_TYPE_SEARCH))
            << "buddies of all groups, whatever their state";
        pList->listContactId = found;
        return succeeds;
    }
    int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) override {
        EXPECT_EQ(std::pair(eType, iFlag), std::pair(PRESENCE_TYPE_BUDDY, 0));
        const auto it = details.find(info.iContactId);
        info = it == details.end() ? info : it->second;
        return it == details.end() ? 0 : 1;
    }
};

TEST(Presence, GivesARowForEachOfTheFirstThreeNumbers) {
    SteppedPhone phone({localId, buddiesId});
    phone.local->contacts = {{"Known", {"51"}}};
    Buddies buddies;
    buddies.add(2, "Gap", {"", "55", "56", "57"});
    buddies.add(1, "Four", {"51", "x", "52", "x5", "53", "54"});
    buddies.found.push_back(77);
    buddies.add(3, "Same", {"58", "58"});
    buddies.add(4, "", {"59"});
    buddies.add(5, "Known", {"51", "x5"});
    Screen screen;
    const auto search = [&](Buddies* manager) {
        phone.phone.setPresence(manager);
        Wideseek_ResetKey();
        phone.type("5", screen, 0, 0);
        return screen.rows();
    };
    EXPECT_EQ(search(&buddies), "Known 51, Gap 55, Gap 56, Four 51, Four 52, Four 53, Same 58");
    const WideseekItemData& row = screen.pages.back().listItem.back();
    EXPECT_EQ(row.strExtra1 + row.strExtra2 + std::to_string(row.iExtra), "i1i24");
    EXPECT_EQ(search(nullptr), "Known 51") << "without a manager the source fails";
    buddies.succeeds = false;
    EXPECT_EQ(search(&buddies), "Known 51") << "rows of a failed query are not shown";
}

// ---- recent calls ----

TEST(RecentCalls, AreOfferedWhenTheyAreOnAndTheirSourceSucceeds) {
    SteppedPhone phone({});
    phone.recent->list = {{"N", {"5"}, "x"}, {"", {"6"}}};
    Screen screen;
    const auto page = [&](int setting) {
        phone.phone.setConfig("FeaturesRecentCallEnable", setting);
        phone.type("  ", screen, 0, 4);
        return textOf(screen.pages.back());
    };
    for (const int off : {0, 2, -1}) {
        EXPECT_EQ(page(off), ";  0+4 of 0");
    }
    EXPECT_EQ(page(1), "N 5, 6 6;  0+10 of 2");
    CallLogSearchListData direct{{{"old", "1"}}, 0, 3, 99};
    EXPECT_TRUE(Wideseek_SearchRecentOutCall(&direct));
    EXPECT_EQ(direct.listItem.size(), 3U) << "behind what was there";
    EXPECT_EQ(direct.iTotalCount, 2);
    phone.recent->fails = true;
    EXPECT_EQ(page(1), ";  0+10 of 0");
    EXPECT_FALSE(Wideseek_SearchRecentOutCall(&direct) || Wideseek_SearchRecentOutCall(nullptr));
    EXPECT_EQ(direct.iTotalCount, 2);
}

TEST(RecentCalls, StayWhenTheTimerOfTheSearchBeforeThemExpires) {
    LdapPhone phone;
    phone.phone.setConfig("FeaturesRecentCallEnable", 1);
    phone.type("5", phone.screen);
    host::Phone::failAllocation(1);
    phone.type("", phone.screen);
    phone.run(1s);
    EXPECT_EQ(phone.screen.count(), 0U) << "without memory for their page, an empty one in its place would be wrong";
}

} // namespace
