// The search from key to page, with sources that answer at once.

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace {

using namespace test;

const std::string localId = "local_directory_search";
const std::string callsId = "calllog_search";
const std::string remoteId = "remote_directory_search";
const std::string broadId = "BroadSoft_directory_search";
const std::string networkId = "Network_directory_search";

TEST(FullSearch, ListsRowsInSourceOrderOnePerNumberWithoutDuplicates) {
    SteppedPhone phone({remoteId, localId, "", broadId, networkId});
    phone.local->contacts = {{"Ann", {"51", "", "53"}, "sales"}, {"Ann", {"51", "54", "51"}}, {"ann", {"51"}}};
    phone.remote->contacts = {{"Bob", {"52", "52"}}, {"Ann", {"53", "59"}}, {"", {"5000"}}, {"J5", {}}};
    phone.broad->contacts = {{"Bob", {"52 "}}, {"Ann", {"59"}}};
    Screen screen;
    phone.type("5", screen);
    ASSERT_EQ(screen.count(), 1U);
    EXPECT_EQ(screen.rows(), "Bob 52, Ann 53, Ann 59, Ann 51, Ann 54, ann 51, Bob 52 ");
    const WideseekListData& page = screen.pages.back();
    EXPECT_EQ(page.iTotalCount, 7);
    EXPECT_EQ(page.strKey, "5");
    const WideseekItemData& shared = *std::next(page.listItem.begin(), 3);
    EXPECT_EQ(shared.strExtra2 + "|" + shared.strExtra1 + "|" + std::to_string(shared.iExtra), "sales||-1");
    EXPECT_EQ(phone.broad->asked, (std::vector<std::string>{"5", "5"}))
        << "once for each of the two ids that it serves";
}

TEST(FullSearch, SourcesAreAskedWithTheConvertedKeyAndThePageReportsTheTypedOne) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"Ann", {"+49301234"}}};
    Screen screen;
    phone.type(" +49 (30) 12-34 ", screen);
    EXPECT_EQ(phone.local->asked.back(), "49301234");
    EXPECT_EQ(screen.rows(), "Ann +49301234");
    EXPECT_EQ(screen.pages.back().strKey, " +49 (30) 12-34 ");
}

TEST(FullSearch, ASourceThatNobodyServesHoldsBackEveryPageThatTheOthersDoNotFill) {
    for (const char* id : {"unknown_search", localId.c_str()}) {
        SteppedPhone phone({localId, id});
        phone.local->contacts = {{"Ann", {"51", "52"}}};
        Screen screen;
        phone.type("5", screen, 0, 3);
        phone.run(1s);
        EXPECT_EQ(screen.count(), 0U) << id;
        phone.type("5", screen, 0, 3);
        EXPECT_EQ(screen.rows(), "Ann 51, Ann 52") << "a repeat cuts what is there";
        Wideseek_ResetKey();
        phone.type("5", screen, 0, 2);
        EXPECT_EQ(screen.count(), 2U) << id;
    }
}

TEST(FullSearch, AFilledPageIsSentBeforeTheSourcesBehindItAreAsked) {
    SteppedPhone phone({localId, remoteId});
    phone.local->contacts = {{"Ann", {"51", "52"}}};
    phone.remote->contacts = {{"Bob", {"53"}}};
    Screen screen;
    std::size_t pagesBefore = 99;
    phone.remote->meanwhile = [&] { pagesBefore = phone.phone.kernel().pending(); };
    phone.type("5", screen, 0, 2);
    EXPECT_EQ(pagesBefore, 2U) << "the page on its way, and this search";
    ASSERT_EQ(screen.count(), 1U) << "one page per request";
    EXPECT_EQ(screen.pages.back().iTotalCount, 2);
    phone.type("5", screen, 2, 2);
    EXPECT_EQ(screen.rows(), "Bob 53") << "the other source was asked all the same";
    EXPECT_EQ(phone.local->asked.size(), 1U) << "a repeat asks nobody";
}

TEST(Choice, RepeatNarrowingOrFullSearchAsTheKeysFollow) {
    struct Step {
        const char* key;
        bool asks;
        const char* rows;
    };
    const std::vector<Step> steps = {
        {"1", true, "Ann 1, Bob 12, Cem 123"},
        {"12", false, "Bob 12, Cem 123"},
        {" 12 ", false, "Bob 12, Cem 123"},
        {"123", false, "Cem 123"},
        {"12", true, "Bob 12, Cem 123"},
        {"2", true, "Ann 1, Bob 12, Cem 123"},
        {"2x", false, ""},
        {"a", true, "Ann 1"},
        {"A", false, "Ann 1"},
        {"an", false, "Ann 1"},
        {"reset an", true, "Ann 1"},
    };
    SteppedPhone phone({localId});
    phone.local->contacts = {{"Ann", {"1"}}, {"Bob", {"12"}}, {"Cem", {"123"}}};
    Screen screen;
    for (const Step& step : steps) {
        std::string key = step.key;
        if (key.starts_with("reset ")) {
            Wideseek_ResetKey();
            key = key.substr(6);
        }
        const std::size_t asked = phone.local->asked.size();
        phone.type(key, screen);
        EXPECT_EQ(phone.local->asked.size() - asked, step.asks ? 1U : 0U) << step.key;
        EXPECT_EQ(screen.rows(), step.rows) << step.key;
    }
    EXPECT_EQ(screen.count(), steps.size());
}

TEST(Narrowing, DigitsLookAtAllNumbersAndTheKeypadNameTextAtTheNameAlone) {
    SteppedPhone phone({localId, remoteId});
    phone.local->contacts = {{"Jed", {"+491", "7"}}, {"Amy 53", {"1"}}, {"Zoe", {"99", "+5301"}}, {"Lu", {"58"}}};
    phone.remote->contacts = {{"Lu", {"58", "533"}}};
    Screen screen;
    phone.type("5", screen, 0, 0);
    EXPECT_EQ(screen.pages.back().iTotalCount, 7) << screen.rows();
    phone.type("53", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "Jed +491, Jed 7, Amy 53 1, Zoe 99, Zoe +5301, Lu 533");
    phone.type("53x", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "");
    // What narrowing removed is no duplicate any more.
    phone.type("58", screen, 0, 0);
    EXPECT_EQ(screen.rows(), "Lu 58, Lu 533");
}

TEST(Paging, CutsTheSliceAndRefusesWhatIsNegativeWithoutOverflow) {
    struct Slice {
        int from;
        int count;
        int pages;
        const char* rows;
    };
    const std::vector<Slice> slices = {
        {0, 2, 1, "A 51, B 52"},
        {2, 2, 1, "C 53, D 54"},
        {3, 10, 1, "D 54"},
        {4, 1, 1, ""},
        {1, 0, 1, "B 52, C 53, D 54"},
        {INT_MAX, INT_MAX, 1, ""},
        {1, INT_MAX, 1, "B 52, C 53, D 54"},
        {INT_MAX, 0, 1, ""},
        {-1, 2, 0, ""},
        {0, -1, 0, ""},
        {INT_MIN, INT_MIN, 0, ""},
        {INT_MAX, INT_MIN, 0, ""},
        {0, 1, 1, "A 51"},
    };
    for (const bool fresh : {false, true}) {
        SteppedPhone phone({localId, remoteId});
        phone.local->contacts = {{"A", {"51"}}, {"B", {"52"}}};
        phone.remote->contacts = {{"C", {"53"}}, {"D", {"54"}}};
        Screen first;
        phone.type("5", first, 0, 0);
        for (const Slice& slice : slices) {
            if (fresh) {
                Wideseek_ResetKey();
            }
            Screen screen;
            phone.type("5", screen, slice.from, slice.count);
            ASSERT_EQ(screen.pages.size(), static_cast<std::size_t>(slice.pages)) << slice.from << " " << slice.count;
            if (slice.pages == 1) {
                // A page that its first source fills is sent before the other one is asked.
                const bool early = fresh && slice.from < 2 && slice.from + static_cast<long long>(slice.count) <= 2 &&
                                   slice.from + slice.count > 0;
                const std::string rows = early && slice.count == 0 ? "B 52" : slice.rows;
                EXPECT_EQ(screen.rows(), rows) << slice.from << " " << slice.count;
                EXPECT_EQ(screen.pages.back().iFromIndex, slice.from);
                EXPECT_EQ(screen.pages.back().iSearchCount, slice.count);
                EXPECT_EQ(screen.pages.back().iTotalCount, early ? 2 : 4) << slice.from << " " << slice.count;
            }
        }
    }
}

TEST(ResultData, IsThePageLastCutWhole) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"A", {"51"}}, {"B", {"52"}}};
    NS_WS::CWideseekAction* action = Wideseek_CreateSearchAction();
    ASSERT_NE(action, nullptr);
    WideseekListData page = action->GetResultData();
    EXPECT_EQ(page.strKey + std::to_string(page.iTotalCount) + std::to_string(page.iSearchCount), "00");
    Screen screen;
    const auto request = [&](const std::string& key, int from) {
        const NS_WS::CWideseekAction::CHandOver handOver(*action, &screen);
        action->SetFromIndex(from);
        action->SetSearchCount(1);
        action->SetKey(key);
    };
    request("5", 1);
    EXPECT_EQ(action->GetResultData().iFromIndex, 0) << "a position without its key is shown to nobody";
    action->Exec();
    page = action->GetResultData();
    EXPECT_EQ(rowsOf(page) + " " + page.strKey + " " + std::to_string(page.iFromIndex) + " of " +
                  std::to_string(page.iTotalCount),
              "B 52 5 1 of 2");
    Wideseek_DestroySearchAction(action);
    Wideseek_DestroySearchAction(nullptr);
    Wideseek_DestroySearchCBAction(nullptr);
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

TEST(Configuration, AChangeReloadsTheListAndTheNextKeyAsksTheNewSources) {
    SteppedPhone phone({localId});
    phone.local->contacts = {{"A", {"51"}}};
    phone.remote->contacts = {{"B", {"52"}}};
    Screen screen;
    phone.type("5", screen);
    phone.setSourceList(sourceListOf({remoteId, localId}));
    phone.phone.announceConfigChange(51);
    phone.run();
    phone.type("5", screen);
    EXPECT_EQ(screen.rows(), "A 51") << "another part of the configuration";
    phone.phone.announceConfigChange(52);
    phone.run();
    phone.type("5", screen);
    EXPECT_EQ(screen.rows(), "B 52, A 51");
    EXPECT_EQ(std::count(phone.log.begin(), phone.log.end(), "Wideseek: begin to reload configure!"), 1);

    std::filesystem::remove(phone.root.path() / "config/data/wideseek.xml");
    phone.phone.announceConfigChange(52);
    phone.run();
    phone.type("5", screen);
    EXPECT_EQ(screen.rows(), "");
}

} // namespace
