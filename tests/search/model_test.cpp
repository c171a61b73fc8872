// The source list file: what takes part, in which order, and what a file that is not as it should be does.

#include "app/Gui/Logic/Wideseek/WideseekModel.h"
#include "host/files/FileText.h"
#include "tests/support/SteppedPhone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using namespace test;

using Ids = std::vector<std::string>;

Ids enabledIds(const NS_WS::CWideseekModel& model) {
    NS_WS::WideseekCfgListData list;
    list.listItem.push_back({"kept", "is appended to"});
    EXPECT_TRUE(model.GetEnableCfgList(&list));
    EXPECT_EQ(list.listItem.front().strIdName, "kept");
    Ids ids;
    for (auto item = std::next(list.listItem.begin()); item != list.listItem.end(); ++item) {
        ids.push_back(item->strIdName);
    }
    return ids;
}

std::string item(const std::string& id, const std::string& attributes) {
    return "<item id_name=\"" + id + "\" " + attributes + "/>";
}

TEST(SourceList, TakesPartByPriorityAndEndsAtTheFirstDisabledItem) {
    const std::string on = "enable=\"1\" priority=\"";
    const std::string off = item("off", "enable=\"0\" priority=\"1\"");
    const struct {
        const char* rule;
        std::string items;
        Ids enabled;
        bool read = true;
    } cases[] = {
        {"ascending priority, negative before 0, none is 0",
         item("c", on + "7\"") + item("b", "enable=\"1\"") + item("a", on + "-3\""),
         {"a", "b", "c"}},
        {"equal priorities stay in file order", item("x", on + "5\"") + item("a", on + "5\""), {"x", "a"}},
        {"a disabled item has priority 255 whatever it says", off + item("on", on + "2\""), {"on"}},
        {"enabled with 255 before every disabled one takes part",
         item("late", on + "255\"") + off + item("later", on + "255\""),
         {"late"}},
        {"above 255 takes part only when none is disabled", item("far", on + "300\"") + off, {}},
        {"above 255 comes last", item("far", on + "300\"") + item("near", on + "1\""), {"near", "far"}},
        {"text where a number belongs disables", item("a", "enable=\"yes\"") + item("b", on + "1\""), {"b"}},
        {"any number but 0 enables", item("a", "enable=\"-2\" priority=\"x\""), {"a"}},
        {"elements before the first item are skipped, all behind it are items",
         "<other id_name=\"no\" enable=\"1\"/>" + item("a", on + "1\"") + "<other id_name=\"b\" enable=\"1\"/>",
         {"b", "a"}},
        {"empty, unknown and repeated ids stay",
         item("", on + "1\"") + item("q", on + "2\"") + item("q", on + "2\""),
         {"", "q", "q"}},
        {"no item at all", "<other/>", {}, false},
        {"no root element", "</root_wideseek><items>" + item("a", on + "1\"") + "</items><root_wideseek>", {}, false},
    };
    const TempRoot root;
    const host::Phone phone({.root = root.path(), .driver = host::Driver::stepped, .ldapDelay = {}, .log = {}});
    NS_WS::CWideseekModel model;
    EXPECT_FALSE(model.ReloadConfigure()) << "no file";
    EXPECT_FALSE(model.GetEnableCfgList(nullptr));
    for (const auto& c : cases) {
        root.write("config/data/wideseek.xml", "<root_wideseek>" + item("old", on + "0\"") + "</root_wideseek>");
        EXPECT_TRUE(model.ReloadConfigure());
        EXPECT_EQ(enabledIds(model), Ids{"old"});
        root.write("config/data/wideseek.xml", "<root_wideseek>" + c.items + "</root_wideseek>");
        EXPECT_EQ(model.ReloadConfigure(), c.read) << c.rule;
        EXPECT_EQ(enabledIds(model), c.enabled) << c.rule;
    }
    const std::string file = root.path() / "config/data/wideseek.xml";
    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_FALSE(model.ReloadConfigure()) << "a pipe, whose other end never comes";
    std::string error;
    EXPECT_FALSE(host::readFile(file, error));
    EXPECT_THAT(error, testing::EndsWith("is not a file; put a regular file there"));
}

} // namespace
