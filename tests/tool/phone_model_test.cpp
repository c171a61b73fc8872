// The phone screen's model: what it asks for, what it shows and where the cursor stands, step by step; and the columns
// that its rows stand in.
#include "tools/wideseek/phone/PhoneModel.h"
#include "tools/wideseek/phone/screens/RowColumns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using wideseek::PhoneModel;

// A model of four rows' height, and a library that answers when a step says so.
class Play {
public:
    Play() { m_model.setHeight(4); }

    void perform(const std::string& steps) {
        std::istringstream words(steps);
        for (std::string word; words >> word;) {
            const std::size_t equals = word.find('=');
            if (equals != std::string::npos) {
                set(word.substr(0, equals), std::stoi(word.substr(equals + 1)));
                continue;
            }
            press(word);
            while (const auto request = m_model.takeRequest()) {
                m_asked.push_back(*request);
            }
        }
    }

    std::string requests() const {
        std::string text;
        for (const PhoneModel::Request& request : m_asked) {
            text += (text.empty() ? "" : " ") + request.key + ":" + std::to_string(request.from) + "+" +
                    std::to_string(request.count);
        }
        return text;
    }

    std::string rows() const {
        std::string text = std::to_string(m_model.firstRow()) + ":";
        for (const WideseekItemData& row : m_model.rows()) {
            text += " " + row.strName;
        }
        return text;
    }

    std::string cursor() const { return m_model.selected() ? m_model.selected()->strName : "-"; }

private:
    void press(const std::string& word) {
        const std::map<std::string, void (PhoneModel::*)()> keys = {{"clear", &PhoneModel::clear},
                                                                    {"digits", &PhoneModel::switchEntry},
                                                                    {"home", &PhoneModel::moveToFirst},
                                                                    {"end", &PhoneModel::moveToLast},
                                                                    {"away", &PhoneModel::comeBack}};
        using wideseek::LineEdit;
        const std::map<std::string, LineEdit> edits = {
            {"left", LineEdit::left},      {"right", LineEdit::right},        {"begin", LineEdit::toBegin},
            {"last", LineEdit::toEnd},     {"erase", LineEdit::eraseBefore},  {"delete", LineEdit::eraseAfter},
            {"word", LineEdit::eraseWord}, {"front", LineEdit::eraseToBegin}, {"rest", LineEdit::eraseToEnd}};
        if (const auto edit = edits.find(word); edit != edits.end()) {
            m_model.edit(edit->second);
        } else if (word == "page" || word == "old") {
            answer(word == "page" ? m_asked.back() : m_asked.front());
        } else if (word == "up" || word == "down") {
            m_model.moveBy(word == "up" ? -1 : 1);
        } else if (word == "pgup" || word == "pgdn") {
            m_model.moveByPages(word == "pgup" ? -1 : 1);
        } else if (const auto key = keys.find(word); key != keys.end()) {
            (m_model.*key->second)();
        } else {
            m_model.type(word);
        }
    }

    void set(const std::string& what, int number) {
        if (what == "height") {
            m_model.setHeight(number);
        } else if (what == "rows") {
            for (int i = 0; i < number; ++i) {
                m_library.push_back("r" + std::to_string(i));
            }
        } else if (what == "ahead") {
            m_library.insert(m_library.begin(), static_cast<std::size_t>(number), "new");
        } else if (what == "without") {
            m_library.erase(m_library.begin(), m_library.begin() + number);
        } else if (what == "only") {
            m_library.resize(static_cast<std::size_t>(number));
        }
    }

    void answer(const PhoneModel::Request& request) {
        WideseekListData page;
        page.strKey = request.key;
        page.iFromIndex = request.from;
        page.iSearchCount = request.count;
        page.iTotalCount = static_cast<int>(m_library.size());
        for (int i = request.from; i < std::min(page.iTotalCount, request.from + request.count); ++i) {
            WideseekItemData row;
            row.strName = m_library[static_cast<std::size_t>(i)];
            page.listItem.push_back(row);
        }
        m_model.takePage(page);
    }

    PhoneModel m_model;
    std::vector<std::string> m_library; // the rows that match, whatever the key
    std::vector<PhoneModel::Request> m_asked;
};

TEST(PhoneModel, AsksForWhatIsMissingShowsWhatIsHereAndKeepsTheCursorOnItsRow) {
    const struct {
        std::string steps, requests, rows, cursor;
    } cases[] = {
        // A page that is full may have been cut early, so more is asked for at once; one that is not full need not be.
        {"rows=9 5", "5:0+4", "0:", "-"},
        {"rows=3 5 page", "5:0+4", "0: r0 r1 r2", "r0"},
        {"rows=9 5 page", "5:0+4 5:0+12", "0: r0 r1 r2 r3", "r0"},
        {"rows=9 5 page page", "5:0+4 5:0+12", "0: r0 r1 r2 r3", "r0"},
        // The key, and answers to another one.
        {"rows=3 5 3 old", "5:0+4 53:0+4", "0:", "-"},
        {"rows=3 5 page 3", "5:0+4 53:0+4", "0: r0 r1 r2", "-"},
        {"rows=3 5 page down 3 page", "5:0+4 53:0+4", "0: r0 r1 r2", "r0"},
        {"digits ä digits ä erase erase", ":0+10 2:0+4 2ä:0+4 2:0+4 :0+10", "0:", "-"},
        // The caret moves by characters and searches nothing; what is typed and erased is so before it or behind it.
        {"än left left left right x right right y", "än:0+4 äxn:0+4 äxny:0+4", "0:", "-"},
        {"jéx left erase erase erase delete delete", "jéx:0+4 jx:0+4 x:0+4 :0+10", "0:", "-"},
        {"ann\u00A0neil\u3000 left word x", "ann\u00A0neil\u3000:0+4 ann\u00A0\u3000:0+4 ann\u00A0x\u3000:0+4",
         "0:", "-"},
        {"abc left front begin x rest last word", "abc:0+4 c:0+4 xc:0+4 x:0+4 :0+10", "0:", "-"},
        // The recent calls come by ten and leave a line to their heading; they are asked for until they fill the rest.
        {"rows=9 clear page down down down", ":0+10", "1: r1 r2 r3", "r3"},
        {"rows=13 height=12 clear page", ":0+10 :10+10", "0: r0 r1 r2 r3 r4 r5 r6 r7 r8 r9", "r0"},
        {"rows=13 height=12 clear page page down", ":0+10 :10+10", "0: r0 r1 r2 r3 r4 r5 r6 r7 r8 r9 r10", "r1"},
        {"rows=25 clear page end page pgup page", ":0+10 :22+10 :19+10", "19: r19 r20 r21", "r21"},
        {"rows=13 height=12 clear page page end away page page", ":0+10 :10+10 :2+10 :12+10",
         "2: r2 r3 r4 r5 r6 r7 r8 r9 r10 r11 r12", "r12"},
        {"rows=25 height=12 clear page only=3 page page", ":0+10 :10+10 :0+10", "0: r0 r1 r2", "r0"},
        // The cursor scrolls no further than the rows go, and waits for rows that are not here.
        {"rows=9 5 page page down down down down up", "5:0+4 5:0+12", "1: r1 r2 r3 r4", "r3"},
        {"rows=9 5 page page up", "5:0+4 5:0+12", "0: r0 r1 r2 r3", "r0"},
        {"rows=9 5 page page end", "5:0+4 5:0+12", "5: r5 r6 r7 r8", "r8"},
        {"rows=9 5 page page end down down", "5:0+4 5:0+12", "5: r5 r6 r7 r8", "r8"},
        {"rows=3 5 page down down down down", "5:0+4", "0: r0 r1 r2", "r2"},
        {"rows=9 5 page page down pgdn pgdn pgdn home", "5:0+4 5:0+12", "0: r0 r1 r2 r3", "r0"},
        {"rows=30 5 page page pgdn pgdn pgdn", "5:0+4 5:0+12 5:8+12", "8: r8 r9 r10 r11", "-"},
        {"rows=30 5 page page pgdn pgdn pgdn page", "5:0+4 5:0+12 5:8+12", "12: r12 r13 r14 r15", "r12"},
        {"rows=30 5 page page end old page pgup", "5:0+4 5:0+12 5:22+12", "22: r22 r23 r24 r25", "r25"},
        // A late page leaves the cursor on its row and in its line; the row is looked for as far as it can have gone.
        {"rows=9 5 page page down ahead=2 page", "5:0+4 5:0+12", "2: r0 r1 r2 r3", "r1"},
        {"rows=9 5 page page ahead=40 page", "5:0+4 5:0+12 5:0+92", "0: r0 r1 r2 r3", "-"},
        {"rows=9 5 page page ahead=40 page page", "5:0+4 5:0+12 5:0+92", "40: r0 r1 r2 r3", "r0"},
        {"rows=9 5 page page ahead=40 page down", "5:0+4 5:0+12 5:0+92", "0: new new new new", "new"},
        {"rows=9 5 page page without=2 page", "5:0+4 5:0+12 5:0+16", "0: r0 r1 r2 r3", "-"},
        {"rows=9 5 page page without=2 page page", "5:0+4 5:0+12 5:0+16", "0: r2 r3 r4 r5", "r2"},
        {"rows=9 5 page page end without=7 page", "5:0+4 5:0+12", "0: r7 r8", "r8"},
        // No line stays blank at the end as long as there are rows for it.
        {"rows=9 5 page page end up up up only=6 page", "5:0+4 5:0+12", "2: r2 r3 r4 r5", "r5"},
        // Another screen was in front, or the window has another height.
        {"rows=3 5 away page", "5:0+4 5:0+4", "0: r0 r1 r2", "r0"},
        {"rows=3 5 page down away page", "5:0+4 5:0+12", "0: r0 r1 r2", "r1"},
        {"rows=9 5 page page end height=6", "5:0+4 5:0+12", "3: r3 r4 r5 r6 r7 r8", "r8"},
        {"rows=9 5 page page down down down height=2", "5:0+4 5:0+12", "2: r2 r3", "r3"},
        {"rows=9 5 page page height=13 page", "5:0+4 5:0+12", "0: r0 r1 r2 r3 r4 r5 r6 r7 r8", "r0"},
    };
    for (const auto& each : cases) {
        Play play;
        play.perform(each.steps);
        EXPECT_EQ(play.requests(), each.requests) << each.steps;
        EXPECT_EQ(play.rows(), each.rows) << each.steps;
        EXPECT_EQ(play.cursor(), each.cursor) << each.steps;
    }
}

TEST(RowColumns, ShowAllThatThereIsRoomForAndStandStillWhileOneTypes) {
    using Widths = wideseek::RowColumns::Widths;
    const struct {
        int screen;
        Widths needed;
        bool fits; // all that has a column; else name and number
    } cases[] = {
        {40, {18, 13, 8, 21}, false},  {59, {18, 13, 8, 21}, true},    {80, {26, 13, 8, 23}, true},
        {80, {28, 13, 23, 60}, false}, {80, {4, 4, 4, 56}, true},      {120, {40, 15, 23, 24}, true},
        {200, {70, 20, 23, 60}, true}, {200, {30, 13, 300, 9}, false},
    };
    for (const auto& [screen, needed, fits] : cases) {
        wideseek::RowColumns columns;
        columns.fit(screen, needed, false);
        const auto name = columns.name();
        const auto number = columns.number();
        EXPECT_GE(name.width, needed.name) << screen;
        EXPECT_GE(number.width, needed.number) << screen;
        EXPECT_EQ(columns.source().width > 0, screen >= wideseek::RowColumns::widthForSource) << screen;
        EXPECT_EQ(columns.extra().width >= needed.extra &&
                      (screen < wideseek::RowColumns::widthForSource || columns.source().width >= needed.source),
                  fits)
            << screen;
        EXPECT_LE(number.begin - name.width, 8) << "a narrow table on a screen of " << screen;

        // Rows that need less, and then a little more, leave everything where it is until the key is cleared.
        columns.fit(screen, {needed.name - 3, 3, 3, 3}, false);
        EXPECT_EQ(columns.number().begin, number.begin) << screen;
        wideseek::RowColumns fresh;
        fresh.fit(screen, {3, 3, 3, 3}, true);
        columns.fit(screen, {3, 3, 3, 3}, true);
        EXPECT_EQ(columns.number().begin, fresh.number().begin) << screen;
    }
    for (int screen = 40; screen <= 200; ++screen) {
        for (const Widths& greedy : {Widths{300, 300, 300, 300}, Widths{300, 0, 0, 0}, Widths{0, 300, 0, 300}}) {
            wideseek::RowColumns columns;
            columns.fit(screen, greedy, false);
            int end = 0;
            for (const auto& column : {columns.name(), columns.number(), columns.source(), columns.extra()}) {
                if (column.width > 0) {
                    EXPECT_GT(column.begin, end) << screen;
                    end = column.begin + column.width;
                }
            }
            EXPECT_LE(end, screen);
            EXPECT_GE(columns.number().width, std::min(greedy.number, 14)) << screen;
            EXPECT_GE(columns.name().width, std::min(greedy.name, 14)) << screen;
        }
    }
}

} // namespace
