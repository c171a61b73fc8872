// Contacts: which of them match a key, how they are read from files, and how a file's change is noticed.
#include "host/contacts/CallLogFile.h"
#include "host/contacts/ContactFile.h"
#include "host/contacts/ContactIndex.h"
#include "host/contacts/FileDirectory.h"
#include "host/text/Key.h"
#include "host/text/MatchedPart.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"
#include "platform/CommonAPI.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <limits>
#include <random>
#include <thread>

namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;

// A contact or call in one line.
std::string shown(const DirectorySearchData& c) {
    return c.strName + "|" + c.strNumber1 + "|" + c.strNumber2 + "|" + c.strNumber3 + "|" + c.strExtra;
}

std::string shown(const host::Contact& c) {
    const auto number = [&](std::size_t i) { return i < c.numbers.size() ? c.numbers[i].number : ""; };
    return shown({c.name, number(0), number(1), number(2), c.extra});
}

Strings shown(const OxList<DirectorySearchData>& hits) {
    Strings lines;
    for (const auto* node = hits.Begin(); node != hits.End(); node = node->pNext) {
        lines.push_back(shown(node->value));
    }
    return lines;
}

// Names and numbers short enough to hit often, with bytes that a blob of many could be confused by.
std::string randomField(std::mt19937& random) {
    static const Strings pieces{"a",    "b",    "A",   "é",  "4",  "2", "+",  " ", "-",
                                "\xFF", "\xC3", "\0"s, "４", "ab", "*", "李", "ö"};
    std::string field;
    for (auto count = random() % 5; count > 0; --count) {
        field += pieces[random() % pieces.size()];
    }
    return field;
}

// As the search module decides when it narrows.
bool narrowingKeeps(const DirectorySearchData& contact, const std::string& key) {
    const auto matches = [&](const std::string& field) {
        return CommonAPI_StringMatch(field, key, false, STRING_MATCH_CONTAINS) != 0;
    };
    if (!CommonAPI_IsSearchByT9(key)) {
        return matches(contact.strName);
    }
    const auto number = [](const std::string& text) { return CommonAPI_TrimString(text, "+", TRIM_TYPE_BOTH_ENDS); };
    return matches(number(contact.strNumber1)) || matches(number(contact.strNumber2)) ||
           matches(number(contact.strNumber3)) || matches(CommonUnits_ToKeyString(contact.strName));
}

// Whether every word of the key, or the key of digits, begins a word of the name or a number.
bool isBetter(const DirectorySearchData& contact, const std::string& key) {
    const host::MatchKey made(key);
    std::vector<std::string> beginnings; // all texts that a word or number begins
    const auto add = [&](const std::string& text, auto append) {
        for (std::string_view rest = text; !rest.empty(); host::text::takeWord(rest)) {
            append(rest, beginnings.emplace_back());
        }
    };
    if (made.digits) {
        for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
            std::string forms;
            host::text::appendNumberForms(*number, forms);
            beginnings.push_back(forms);
            for (std::size_t at = forms.size(); at > 1; --at) {
                if (forms[at - 2] == host::text::formSeparator) {
                    beginnings.push_back(forms.substr(at - 1));
                }
            }
        }
    }
    for (const std::string& way : {contact.strName, host::text::spelledOut(contact.strName)}) {
        add(way, made.digits ? host::text::appendKeypadForm : host::text::appendCompact);
    }
    return std::all_of(made.words.begin(), made.words.end(), [&](const std::string& word) {
        return std::any_of(beginnings.begin(), beginnings.end(),
                           [&](const std::string& beginning) { return beginning.starts_with(word); });
    });
}

TEST(ContactIndex, FindsWhatTheRuleForOneContactAndNarrowingFindBetterMatchesFirst) {
    std::mt19937 random(5);
    std::size_t better = 0;
    std::size_t others = 0;
    for (int round = 0; round < 2'000; ++round) {
        std::vector<DirectorySearchData> contacts(round % 400 == 0 ? 3'000 : random() % 12);
        for (DirectorySearchData& contact : contacts) {
            contact = {randomField(random), randomField(random), randomField(random), randomField(random),
                       std::to_string(random())};
        }
        const host::ContactIndex index(contacts);
        for (int i = 0; i < 20; ++i) {
            const std::string key = CommonAPI_StringConvert(randomField(random), STRING_CONVERT_SEARCH_KEY);
            Strings expected;
            Strings inside;
            for (const DirectorySearchData& contact : contacts) {
                const bool kept = narrowingKeeps(contact, key);
                ASSERT_EQ(host::matches(contact, host::MatchKey(key)), kept)
                    << testing::PrintToString(shown(contact)) << testing::PrintToString(key);
                if (kept) {
                    (isBetter(contact, key) ? expected : inside).push_back(shown(contact));
                }
            }
            better += key.empty() ? 0 : expected.size();
            others += inside.size();
            expected.insert(expected.end(), inside.begin(), inside.end());
            OxList<DirectorySearchData> hits;
            index.appendMatches(key, hits);
            ASSERT_EQ(shown(hits), expected) << testing::PrintToString(key);
        }
    }
    EXPECT_GT(better, 10'000U);
    EXPECT_GT(others, 10'000U);
}

// With the country's own rules a number is found in every way in which people type it, by whoever looks for it.
TEST(ContactIndex, FindsANumberOfTheOwnCountryHoweverItIsStoredAndTyped) {
    host::text::setDiallingRules({"44", "0", "00"});
    const struct {
        std::string key, number, marked;
    } cases[] = {
        {"020 7946 0041", "+442079460041", "[+442079460041]"},
        {"+44 20 7946 0041", "02079460041", "[02079460041]"},
        {"0044 20", "02079460041", "[020]79460041"},
        {"0044 20", "00442079460041", "[004420]79460041"},
        {"44 20", "00442079460041", "00[4420]79460041"},
        {"020", "+442079460041", "[+4420]79460041"},
        {"79460", "+442079460041", "+4420[79460]041"},
        {"0", "+44797971111", "[+44]797971111"},
        {"004", "+44797971111", "[+44]797971111"},
        {"0", "+33797971111", ""}, // another country's
        {"0033", "+33797971111", ""},
        {"020", "4420", ""}, // an extension
        {"044", "0033445566", ""},
        {"44", "0033556677", ""},
    };
    for (const auto& [typed, number, marked] : cases) {
        const std::string key = CommonAPI_StringConvert(typed, STRING_CONVERT_SEARCH_KEY);
        const DirectorySearchData contact{"Gigi", number, "", "", ""}; // whose keypad form begins with 44
        std::string shownAs;
        for (const auto& part : host::text::matchedInNumber(number, key)) {
            shownAs = number;
            shownAs.insert(part.begin + part.size, "]").insert(part.begin, "[");
        }
        EXPECT_EQ(shownAs, marked) << typed << " / " << number;
        const bool inName = key == "44";
        const bool found = !marked.empty() || inName;
        EXPECT_EQ(narrowingKeeps(contact, key), found) << typed << " / " << number;
        EXPECT_EQ(host::matches(contact, host::MatchKey(key)), found) << typed << " / " << number;
        OxList<DirectorySearchData> hits;
        host::ContactIndex({&contact, 1}).appendMatches(key, hits);
        EXPECT_EQ(hits.Count() == 1, found) << typed << " / " << number;
    }
    host::text::setDiallingRules({});
    EXPECT_TRUE(host::text::matchedInNumber("+442079460041", "020").empty());
}

TEST(ContactFiles, KeepEveryContactThatCanBeReadAndNameTheLineOfEveryOther) {
    const struct {
        std::string bytes;
        Strings contacts;
        Strings problems; // their beginnings; the last is the error where no contact can be read
    } cases[] = {
        {"name,number1,number2,number3,extra\nAnn,+49 (30) 12-34,030/55.1,*21#,desk\n",
         {"Ann|+49301234|030551|*21#|desk"},
         {}},
        {"\xEF\xBB\xBF\n# people\r\nExtra , NUMBER,name\r\n x ,１２,  Zoë B. \r\n", {"Zoë B.|12|||x"}, {}},
        {"name,number\n\"Berg, Ann \"\"A\"\"\",1\n\"\u00A0Two\nlines\",2\nBad \"\",3\nEnd,4",
         {"Berg, Ann \"A\"|1|||", "Two\nlines|2|||", "End|4|||"},
         {"f:5: a quotation mark"}},
        {"name,number\n\"Open,1\nBo,2\n\n\"Cy\",3\n\"Last,4\nDi,5\n",
         {"Bo|2|||", "Cy|3|||", "Di|5|||"},
         {"f:2: a quotation mark", "f:6: a quotation mark"}},
        {"name,number\nA,1,2\nB,\"2\n\",\nC,x1\n,\nD",
         {"C|x1|||", "D||||"},
         {"f:2: has 3 fields", "f:3: has 3 fields", "f:5: \"x1\" is not a number", "f:6: has neither"}},
        {"name,phone,name,number\nA,1,B,2\n",
         {"A|2|||"},
         {"f:1: the column \"phone\" is unknown", "f:1: names the column \"name\" twice"}},
        {"name,number\nA\0,1\nB,2\rC,3\nF,+\n\"#1\",5\n#no\nJos\xE9,6\n"s,
         {"F|+|||", "#1|5|||", "Jos\xE9|6|||"},
         {"f:2: holds a NUL byte", "f:3: a quotation mark or carriage return", "f:4: \"+\" is not a number",
          "f:7: is not UTF-8 text"}},
        {"Ann\nBo\n", {}, {"f:1: the column \"Ann\"", "f:1: names no known column"}},
        {"#\n\n", {}, {"f: is empty"}},
        {"na\"me,number\nAnn,1\n", {}, {"f:1: a quotation mark"}},
        {"\xFF\xFEn\0a\0"s, {}, {"f: is UTF-16"}},
    };
    for (const auto& [bytes, contacts, problems] : cases) {
        Strings lines;
        host::ReadContacts read =
            host::readContacts(bytes, "f", [&](const host::Contact& contact) { lines.push_back(shown(contact)); });
        EXPECT_EQ(read.error.empty(), !contacts.empty()) << read.error;
        read.problems.push_back(read.error);
        EXPECT_EQ(lines, contacts) << bytes;
        ASSERT_EQ(read.problems.size(), problems.size() + (read.error.empty() ? 1 : 0))
            << bytes << testing::PrintToString(read.problems);
        for (std::size_t i = 0; i < problems.size(); ++i) {
            EXPECT_TRUE(read.problems[i].starts_with(problems[i])) << read.problems[i];
            EXPECT_NE(read.problems[i].find(" - "), std::string::npos) << "says what to do: " << read.problems[i];
        }
    }
    std::string bad = "name,number\nA,x" + std::string(1 << 20, 'x') + "\xC3\n";
    for (int i = 0; i < 100'000; ++i) {
        bad += ",\n";
    }
    const std::vector<std::string> problems = host::readContacts(bad, "f", [](const auto&) {}).problems;
    ASSERT_EQ(problems.size(), host::Problems::most + 1) << "the last one says that there are more";
    EXPECT_TRUE(problems.back().starts_with("f: has more problems than these 100")) << problems.back();
    EXPECT_TRUE(std::all_of(problems.begin(), problems.end(), [](const auto& each) { return each.size() < 700; }));
}

class Files : public testing::Test {
protected:
    // As a careful writer replaces a file; the change lies far enough back to have settled.
    void write(const std::string& bytes) {
        m_root.write("new", bytes);
        std::filesystem::last_write_time(m_root.path() / "new",
                                         std::filesystem::file_time_type::clock::now() - std::chrono::minutes(1));
        std::filesystem::rename(m_root.path() / "new", m_path);
    }

    static Strings found(host::ContactSource& source, const std::string& key) {
        OxList<DirectorySearchData> hits;
        std::string error;
        const bool succeeded = source.search(key, hits, error);
        EXPECT_EQ(succeeded, error.empty()) << error;
        return succeeded ? shown(hits) : Strings{"failed: " + error};
    }

    const test::TempRoot m_root;
    const std::filesystem::path m_path = m_root.path() / "contacts.csv";
    Strings m_problems;
    host::ProblemSink m_sink = [this](std::string problem) { m_problems.push_back(std::move(problem)); };
};

TEST_F(Files, AreReadAgainWhenTheyChangeAndTellEachProblemOnce) {
    host::FileDirectory directory(m_path, m_sink);
    const auto fails = [&](const std::string& why) {
        EXPECT_NE(found(directory, "1").front().find(why), std::string::npos) << why;
        std::filesystem::remove(m_path);
    };
    fails(m_path.string() + ": not there; put the file there or check the folder's name");
    write("name,number\nAnn,1\nBad\"\n");
    EXPECT_EQ(found(directory, "ann"), Strings{"Ann|1|||"});
    write("name,number\nBea,1\nBad\"\n"); // same size, and soon the same time
    EXPECT_EQ(found(directory, "1"), Strings{"Bea|1|||"});
    EXPECT_EQ(m_problems.size(), 1U) << testing::PrintToString(m_problems);
    for (const std::string name : {"Cyd", "Dot"}) { // within one step of the file system's clock
        std::ofstream(m_path, std::ios::binary) << "name,number\n" + name + ",1\n";
        EXPECT_EQ(found(directory, "1"), Strings{name + "|1|||"});
    }
    std::filesystem::remove(m_path);
    std::filesystem::create_directory(m_path);
    fails("is a folder");
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    fails("is not a file");
    write("who\n");
    fails("contacts.csv:1: names no known column");
    write("who\n");
    std::filesystem::resize_file(m_path, static_cast<std::uintmax_t>(host::largestFile) + 1);
    fails("larger than 256 MiB");
}

// What a source knows of a row.
std::string known(const host::ContactLookup& lookup, const std::string& name, const std::string& number) {
    const std::array rows = {host::NameAndNumber{"Nobody", number}, host::NameAndNumber{name, number}};
    const auto contact = lookup.find(rows[1]);
    EXPECT_EQ(lookup.holds(rows), (std::vector<bool>{false, contact.has_value()})) << name << number;
    std::string text = contact ? "" : "not held";
    for (const auto& each : contact ? contact->numbers : std::vector<host::ContactNumber>()) {
        text += std::string(nameOf(each.kind)) + each.number + " ";
    }
    for (const auto& fact : contact ? contact->facts : std::vector<host::KnownContact::Fact>()) {
        text += fact.label + "=" + fact.value + " ";
    }
    return text;
}

TEST_F(Files, FindTheContactOfARowAgainAsItWasReadLast) {
    host::FileDirectory directory(m_path, m_sink);
    write("name,number1,number2,number3,extra\nAnn,1,2,,a\nAnn,3,1,,b\nAn,n1,,4,c\nann,5,,,d\nBo,6,,,\n");
    EXPECT_EQ(known(directory, "Ann", "1"), "not held") << "nothing has been read";
    found(directory, "");
    const struct {
        const char *name, *number, *contact;
    } rows[] = {{"Ann", "1", "1 2 Extra=a "},
                {"Ann", "3", "3 1 Extra=b "},
                {"An", "4", "n1 4 Extra=c "},
                {"ann", "5", "5 Extra=d "},
                {"Bo", "6", "6 "},
                {"Ann", "4", "not held"},
                {"ANN", "1", "not held"},
                {"Ann", "+1", "not held"},
                {"An", "1", "not held"}};
    for (const auto& row : rows) {
        EXPECT_EQ(known(directory, row.name, row.number), row.contact) << row.name << row.number;
    }
    write("name,number\nBo,7\n");
    EXPECT_EQ(known(directory, "Bo", "6"), "6 ") << "what was searched last";
    found(directory, "");
    EXPECT_EQ(known(directory, "Bo", "6") + known(directory, "Bo", "7"), "not held7 ");
}

TEST_F(Files, OfferAContactOfManyNumbersAsSeveralAndKnowTheKindOfEach) {
    host::FileDirectory directory(m_path, m_sink);
    write("name,Work,number,mobile,work2,fax,extra,organisation,email\nAnn,1,2,3,4,5,,Ltd,a@example.com\nBo,,,6,,,x\n");
    EXPECT_EQ(found(directory, "ann"), (Strings{"Ann|1|2|3|Ltd", "Ann|4|5||Ltd"}));
    EXPECT_EQ(found(directory, "5"), Strings{"Ann|4|5||Ltd"});
    for (const std::string number : {"1", "5"}) {
        EXPECT_EQ(known(directory, "Ann", number), "work1 2 mobile3 work4 fax5 Organisation=Ltd Email=a@example.com ");
    }
    EXPECT_EQ(known(directory, "Bo", "6"), "mobile6 Extra=x ");
    EXPECT_EQ(m_problems, Strings());
}

TEST_F(Files, MayBeVCardsOrAFolderOfThemButNotTwoOfTheseAtATime) {
    host::FileDirectory directory(m_path, m_sink);
    const auto card = [](const std::string& name) { return "BEGIN:VCARD\nFN:" + name + "\nTEL:1\nEND:VCARD\n"; };
    const auto file = m_path.parent_path() / "contacts.vcf";
    const auto folder = m_path.parent_path() / "contacts";
    m_root.write("contacts.vcf", card("Ann") + "BEGIN:VCARD\n");
    EXPECT_EQ(found(directory, "1"), Strings{"Ann|1|||"});
    EXPECT_EQ(m_problems.size(), 2U) << testing::PrintToString(m_problems);
    std::filesystem::create_directory(folder);
    EXPECT_NE(found(directory, "1").front().find("contacts.vcf: contacts/ is there as well; keep one"),
              std::string::npos);
    std::filesystem::remove(file);
    EXPECT_EQ(found(directory, "1"), Strings{}) << "an empty folder";
    m_root.write("contacts/b.vcf", card("Bo"));
    m_root.write("contacts/a.VCF", card("Al"));
    m_root.write("contacts/.c.vcf", card("Cy"));
    m_root.write("contacts/note.txt", "no card");
    m_root.write("contacts/z.vcf", "no card");
    EXPECT_EQ(found(directory, "1"), (Strings{"Al|1|||", "Bo|1|||"}));
    EXPECT_NE(m_problems.back().find("z.vcf: holds no vCard"), std::string::npos);
    const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::minutes(1);
    std::filesystem::last_write_time(folder / "b.vcf", longAgo);
    std::filesystem::last_write_time(folder / "a.VCF", longAgo);
    std::filesystem::last_write_time(folder / "z.vcf", longAgo);
    std::filesystem::last_write_time(folder, longAgo);
    found(directory, "1");
    m_root.write("contacts/b.vcf", card("Ed")); // in its place: the folder itself stays as it is
    Strings now;
    for (int i = 0; i < 1'000'000 && now != Strings{"Al|1|||", "Ed|1|||"}; ++i) {
        now = found(directory, "1");
    }
    EXPECT_EQ(now, (Strings{"Al|1|||", "Ed|1|||"}));
    write("name,number\nDi,1\n");
    EXPECT_NE(found(directory, "1").front().find("contacts.csv: contacts/ is there as well"), std::string::npos);
}

TEST_F(Files, AreSearchedByManyThreadsWhileTheyChange) {
    write("name,number\nOne,1\n");
    host::FileDirectory directory(m_path, nullptr);
    std::atomic<bool> ended = false;
    const auto search = [&] {
        while (!ended) {
            const Strings hits = found(directory, "1");
            EXPECT_TRUE(hits == Strings{"One|1|||"} || hits == (Strings{"Two|1|||", "Six|1|||"}));
            const std::array rows = {host::NameAndNumber{"Two", "1"}, host::NameAndNumber{"Six", "1"}};
            const std::vector<bool> held = directory.holds(rows);
            EXPECT_EQ(held[0], held[1]) << "of one reading of the file";
        }
    };
    const std::jthread threads[] = {std::jthread(search), std::jthread(search), std::jthread(search)};
    for (int i = 0; i < 200; ++i) {
        write(i % 2 == 0 ? "name,number\nTwo,1\nSix,1\n" : "name,number\nOne,1\n");
        EXPECT_EQ(found(directory, "0"), Strings{});
    }
    ended = true;
}

// The outgoing calls that are given for from and count, behind what is returned.
Strings outgoing(host::CallLogFile& log, int from, int count) {
    OxVector<GeneralDirItemData> calls;
    std::string error;
    Strings lines{std::to_string(log.outgoing(calls, from, count, error))};
    EXPECT_EQ(lines[0] == "-1", !error.empty());
    for (int i = 0; i < calls.Count(); ++i) {
        lines.push_back(calls.At(i)->strName + "|" + calls.At(i)->strNumber + "|" + calls.At(i)->strExtra);
    }
    return lines;
}

TEST_F(Files, OfCallsGiveTheNewestFirstAndEachPersonOnce) {
    constexpr int most = std::numeric_limits<int>::max();
    host::CallLogFile log(m_path, m_sink);
    EXPECT_EQ(outgoing(log, 0, 10), Strings{"-1"});
    write("time,direction,name,number,extra\n"
          "2026-11-20T09:00:00,out,Ann,1,first\n"
          "2026-11-20T09:00:00,out,Bo,+2,second\n"
          "2026-11-21T08:00:00,missed,,3,third\n"
          "2026-11-19T08:00:00,out,Ann,1,old\n"
          "2026-11-19T07:00:00,in,Ann,4,other number\n"
          "2026-02-29T08:00:00,out,No such day,5,\n"
          "2026-11-19T24:00:00,out,No such hour,5,\n"
          "2026-11-19T08:00:00,away,No direction,5,\n"
          "2026-11-19T08:00:00,out,,,\n");
    EXPECT_EQ(found(log, ""), Strings{}) << "what is found for a cleared search box is not used";
    EXPECT_EQ(found(log, "-"), (Strings{"|3|||third", "Bo|+2|||second", "Ann|1|||first", "Ann|4|||other number"}));
    EXPECT_EQ(found(log, "an"), (Strings{"Ann|1|||first", "Ann|4|||other number"}));
    EXPECT_EQ(m_problems.size(), 4U) << testing::PrintToString(m_problems);
    EXPECT_EQ(outgoing(log, 0, most), (Strings{"3", "Bo|+2|second", "Ann|1|first", "Ann|1|old"}));
    EXPECT_EQ(outgoing(log, 1, 1), (Strings{"3", "Ann|1|first"}));
    EXPECT_EQ(outgoing(log, most, most), Strings{"3"});
    EXPECT_EQ(outgoing(log, -1, 10), Strings{"-1"});
    EXPECT_EQ(outgoing(log, 0, -1), Strings{"-1"});

    EXPECT_EQ(known(log, "Ann", "1"), "1 Extra=first Last call=made 2026-11-20 09:00:00 ");
    EXPECT_EQ(known(log, "", "3"), "3 Extra=third Last call=missed 2026-11-21 08:00:00 ");

    log.add({"Di", "8", "then"});
    log.add({"Cy", "6", ""});
    EXPECT_EQ(outgoing(log, 0, 2), (Strings{"5", "Cy|6|", "Di|8|then"}));
    EXPECT_EQ(known(log, "Di", "8"), "8 Extra=then ");
    write("time,direction,number\n9999-12-31T23:59:59,out,7\n");
    EXPECT_EQ(outgoing(log, 0, 9), (Strings{"3", "Cy|6|", "Di|8|then", "|7|"}))
        << "an added call outlives a change of the file, and is newer whatever the file says";
    write("number,time\n7,2026-11-20T10:00:00\n");
    EXPECT_NE(found(log, "").front().find("names no column \"direction\""), std::string::npos);
    EXPECT_EQ(outgoing(log, 0, 1), (Strings{"2", "Cy|6|"})) << "an added call needs no file";
}

} // namespace
