// What fails costs what it must and nothing more: no crash, no leak, no wrong row, and the next search is right.

#include "platform/CommonAPI.h"
#include "platform/TrackedMemory.h"
#include "tests/support/SteppedPhone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace {

using namespace test;
using Rows = std::vector<std::string>;

const std::vector<std::string> fiveIds = {localId, remoteId, callsId, enterpriseId, ldapId};

// Whose numbers end with the source's own.
std::vector<Contact> contactsOf(std::size_t source) {
    const std::string last = std::to_string(source);
    return {{"X" + last, {"5316" + last}}, {"Y" + last, {"5146" + last, "5246" + last}}};
}

struct FiveSources : SteppedPhone {
    FiveSources() : SteppedPhone(fiveIds) {
        for (std::size_t i = 0; i < sources.size(); ++i) {
            sources[i]->contacts = contactsOf(i);
        }
    }

    const std::vector<std::shared_ptr<ScriptedSource>> sources = {local, remote, calls, broad};

    // Types key, lets the timer expire and LDAP answer, and gives the rows of the last page.
    Rows search(const std::string& key, bool ldapSucceeds = true) {
        Screen screen;
        Wideseek_SearchUnion(key, 0, 0, &screen);
        run(100ms);
        std::vector<Contact> found = contactsOf(4);
        for (Contact& contact : found) {
            std::erase_if(contact.numbers, [&](const std::string& n) { return n.find(key) == std::string::npos; });
        }
        ldap->answer(found, ldapSucceeds);
        run(1s);
        Wideseek_ResetCallBack(&screen);
        return screen.pages.empty() ? Rows() : rowsIn(screen.pages.back());
    }

    void reload(const std::string& xml) {
        setSourceList(xml);
        phone.announceConfigChange(ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK);
    }
};

// True when a fault that was set has not come up yet; it is taken back.
bool faultIsStillAhead() {
    void* block = ::operator new(1, __FILE__, __LINE__);
    ::operator delete(block, __FILE__, __LINE__);
    host::Phone::failAllocation(0);
    return block == nullptr;
}

TEST(Fault, AnAllocationThatFailsCostsItsSearchAndTheNextOneIsRight) {
    const std::vector<std::string> session = {"5", "53", "6", "", "14", "146", "5"};
    std::vector<Rows> right;
    std::size_t nth = 0; // none in the first round
    for (bool more = true; more; ++nth) {
        SCOPED_TRACE(nth);
        FiveSources phone;
        host::Phone::failAllocation(nth);
        int faulty = 0;
        for (std::size_t i = 0; i < session.size(); ++i) {
            const Rows rows = phone.search(session[i]);
            if (nth == 0) {
                right.push_back(rows);
            }
            faulty += rows == right[i] ? 0 : 1;
            EXPECT_TRUE(std::all_of(rows.begin(), rows.end(), [&](const std::string& row) {
                return std::count(right[i].begin(), right[i].end(), row) == 1;
            })) << testing::PrintToString(rows);
        }
        more = nth == 0 || !faultIsStillAhead();
        EXPECT_LE(faulty, more ? 1 : 0) << "searches that showed less than there is";
    }
    EXPECT_EQ(right[0].size(), 15U);
    EXPECT_GT(nth, 40U) << "the session allocates a bucket per source, and a page or two per search";
}

TEST(Fault, AStartWithoutMemoryIsMadeUpForByTheNextStart) {
    for (std::size_t nth = 1; nth <= 12; ++nth) {
        FiveSources phone;
        NS_WS::CWideseekController::ReleaseInstance();
        host::Phone::failAllocation(nth);
        Wideseek_PreInit();
        phone.search("5");
        host::Phone::failAllocation(0);
        NS_WS::CWideseekController::ReleaseInstance();
        EXPECT_TRUE(Wideseek_PreInit());
        EXPECT_EQ(phone.search("5").size(), 15U) << nth;
    }
}

// The page's record fails again and again: with the search, behind what it belongs to, then for a key, then for none.
TEST(Fault, RecentCallsThatThereIsNoMemoryForTakeTheLastKeyAwayWithItsRows) {
    FiveSources phone;
    NS_WS::CWideseekController::ReleaseInstance();
    host::Phone::failAllocation(4);
    EXPECT_TRUE(Wideseek_PreInit());
    for (const char* key : {"5", ""}) {
        host::Phone::failAllocation(1);
        EXPECT_TRUE(phone.search(key).empty());
    }
    const Rows found = phone.search("53");
    Wideseek_ResetKey();
    EXPECT_EQ(found, phone.search("53"));
}

TEST(Fault, ASourceThatFailsCostsItsOwnRowsInThatSearchAlone) {
    for (int nth = 0; nth < 15; ++nth) {
        FiveSources phone;
        int call = 0;
        for (const auto& source : phone.sources) {
            source->meanwhile = [&, raw = source.get()] { raw->fails = call++ == nth; };
        }
        int search = 0;
        for (const char* key : {"5", "14", "31"}) { // each asks all sources
            const bool ldapSucceeds = nth != 12 + search;
            const Rows rows = phone.search(key, ldapSucceeds);
            for (int source = 0; source < 5; ++source) {
                const bool failed = source < 4 ? 4 * search + source == nth : !ldapSucceeds;
                const auto isOfSource = [&](const std::string& row) { return row.ends_with(std::to_string(source)); };
                EXPECT_EQ(std::none_of(rows.begin(), rows.end(), isOfSource), failed)
                    << key << ": " << testing::PrintToString(rows);
            }
            ++search;
        }
    }
}

TEST(Fault, ABrokenSourceListLeavesNoSourceAndTheNextGoodOneAll) {
    const std::string good = sourceListOf({localId, ldapId});
    const std::string huge(1 << 20, 'x');
    std::vector<std::string> broken = {std::string(1, '\0'), "\xff\xfe<", "<root_wideseek/>",
                                       "<other><item id_name='ldap_search' enable='1'/></other>",
                                       "<root_wideseek><item enable='0'/></root_wideseek>" + huge};
    for (std::size_t size = 0; size < good.size(); ++size) { // half-written
        broken.push_back(good.substr(0, size));
    }
    broken.emplace_back("<root_wideseek>");
    for (int i = 0; i < 100000; ++i) {
        broken.back() += "<item>";
    }
    FiveSources phone;
    for (const std::string& xml : broken) {
        phone.reload(xml);
        EXPECT_EQ(phone.search("53"), Rows()) << xml.substr(0, 300);
    }
    phone.reload("<root_wideseek><item id_name='" + huge + "' enable='0x1' priority='-99999999999999999999'/><!-- -->" +
                 "<item id_name='local_directory_search' enable='1' priority='254'/></root_wideseek>");
    EXPECT_EQ(phone.search("53"), Rows()) << "a source that nobody serves holds the page back";
    EXPECT_EQ(phone.search("53"), Rows{"X0 53160"});
    phone.reload(good);
    EXPECT_EQ(phone.search("53"), (Rows{"X0 53160", "X4 53164"}));
}

TEST(Fault, ABrokenContactFileCostsItsOwnContactsAlone) {
    const std::string huge(1 << 20, '5');
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const Rows broken = {"",
                         "\n\n",
                         "\"",
                         std::string(3, '\0'),
                         "name,number\n\"X,5\n",
                         "\xff\xfe\xfd\n5,5",
                         "{}",
                         huge,
                         "[" + huge,
                         "[{\"id\":" + huge + "}]",
                         "[{\"id\":1,\"attributes\":" + deep + "}]",
                         "time,direction,name,number\n" + huge};
    const Rows files = {"local_directory.csv", "remote_directory.csv", "broadsoft_directory.csv",
                        "ldap_directory.csv",  "call_log.csv",         "presence_buddies.json"};
    std::vector<std::string> ids = fiveIds;
    ids.emplace_back(buddiesId);
    TempRoot root;
    root.write("config/data/wideseek.xml", sourceListOf(ids));
    for (const std::size_t victim : {0U, 3U, 4U, 5U}) {
        for (const std::string& bytes : broken) {
            SCOPED_TRACE(files[victim] + ": " + bytes.substr(0, 30));
            for (std::size_t i = 0; i < 4; ++i) {
                root.write("config/contacts/" + files[i], "name,number\n" + files[i] + ",51\n");
            }
            host::Phone phone({.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = 1ms, .log = {}});
            Screen screen;
            const auto rows = [&](const std::string& content) {
                root.write("config/contacts/" + files[victim], content);
                for (const char* key : {"2", "51"}) {
                    Wideseek_SearchUnion(key, 0, 0, &screen);
                    phone.kernel().advance(1s);
                }
                return rowsIn(screen.pages.back()).size();
            };
            EXPECT_EQ(rows(bytes), victim < 4 ? 3U : 4U);
            EXPECT_EQ(rows(victim < 4 ? "name,number\nNew,51\n" : ""), 4U) << "the file is whole again";
            NS_WS::CWideseekController::ReleaseInstance();
        }
    }
}

TEST(Fault, AnyKeyAtAnyPositionGetsItsSliceOrIsRefused) {
    const std::size_t many = 1U << 20U;
    std::vector<std::string> keys = {"5", std::string("5\0", 2), "%s%n%1000000d", "\x80\xff\xc3", "\xed\xa0\x80"};
    for (const char byte : {'5', 'a', '\0', '\xff'}) {
        keys.emplace_back(many, byte);
    }
    const std::vector<int> all = {INT_MIN, -1, 0, 1, 2, 0x00ffffff, INT_MAX - 1, INT_MAX};
    const std::vector<int> few = {1};
    SteppedPhone phone({localId});
    for (const std::string& key : keys) {
        if (CommonAPI_StringConvert(key, STRING_CONVERT_SEARCH_KEY).empty()) {
            continue; // recent calls
        }
        phone.local->contacts = {{key + "A", {"5"}}, {"B" + key, {"5", "55"}}};
        Wideseek_ResetKey();
        const std::vector<int>& positions = key.size() < many ? all : few;
        for (const int from : positions) {
            for (const int count : positions) {
                SCOPED_TRACE(key.substr(0, 20) + " " + std::to_string(from) + " " + std::to_string(count));
                Screen screen;
                phone.type(key, screen, from, count);
                Wideseek_ResetCallBack(&screen);
                ASSERT_EQ(screen.count(), from < 0 || count < 0 ? 0U : 1U);
                if (screen.count() == 1) {
                    const int rest = std::max(0, 3 - from);
                    EXPECT_EQ(screen.pages[0].listItem.size(),
                              static_cast<std::size_t>(count ? std::min(count, rest) : rest));
                    EXPECT_EQ(screen.pages[0].iTotalCount, 3);
                    EXPECT_EQ(screen.pages[0].strKey, key);
                }
            }
        }
    }
}

} // namespace
