// The phone's string helpers: conversion of keys, matching, keypad forms and page bounds.
#include "host/text/Fold.h"
#include "host/text/MatchedPart.h"
#include "host/text/NameForm.h"
#include "host/text/Utf8.h"
#include "platform/CommonAPI.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string convert(const std::string& typed) {
    return CommonAPI_StringConvert(typed, STRING_CONVERT_SEARCH_KEY);
}

bool contains(const std::string& text, const std::string& key) {
    return CommonAPI_StringMatch(text, key, false, STRING_MATCH_CONTAINS) != 0;
}

// Whether a contact that is nothing but this name matches a converted key, as narrowing asks it.
bool nameMatches(const std::string& name, const std::string& key) {
    return contains(CommonAPI_IsSearchByT9(key) ? CommonUnits_ToKeyString(name) : name, key);
}

// Short texts from pieces that are trouble: blanks, marks, wide and composed characters, bytes that are not UTF-8.
std::string randomText(std::mt19937& random, bool valid) {
    static const Strings pieces{"a",      "A",   "b",      "4",      "+",      "-",       " ",      "#",
                                "*",      "(",   ".",      "9",      "é",      "e\u0301", "\u0301", "\u0345",
                                "α",      "ß",   "İ",      "\u00A0", "\u3000", "４",      "Ａ",     "ﾞ",
                                "ガ",     "한",  "½",      "ﷺ",      "\u200B", "Ø",       "\u00B4", "\u1E9B",
                                "\u2011", "\0"s, "\u00AD", "ǅ",      "\xC3",   "\xFF",    "\x80",   "\xE3\x80"};
    const std::size_t usable = pieces.size() - (valid ? 4 : 0);
    std::string text;
    for (auto count = random() % 6; count > 0; --count) {
        text += pieces[random() % usable];
    }
    return text;
}

TEST(Utf8, IsTheSameCharactersFromBothEndsAndABrokenByteIsOneOfItsOwn) {
    std::mt19937 random(5);
    for (int i = 0; i < 2'000; ++i) {
        const std::string text = randomText(random, true);
        std::string forwards;
        std::string backwards;
        for (std::string_view rest = text; !rest.empty();) {
            const char first = rest.front();
            const std::size_t size = host::text::takeFirst(rest).size;
            EXPECT_EQ(size, host::text::sizeFrom(first));
            forwards += std::to_string(size);
        }
        for (std::string_view rest = text; !rest.empty();) {
            const std::size_t size = host::text::lastCharacter(rest).size;
            rest.remove_suffix(size);
            backwards.insert(0, std::to_string(size));
        }
        EXPECT_EQ(forwards, backwards) << text;
    }
    for (const std::string_view broken : {"\x80", "\xC3", "\xE3\x80", "\xC1\x81", "\xED\xA0\x80", "\xF5\x80\x80\x80"}) {
        const auto first = host::text::firstCharacter(broken);
        const auto last = host::text::lastCharacter(broken);
        EXPECT_TRUE(first.codePoint == -1 && first.size == 1 && last.codePoint == -1 && last.size == 1) << broken;
    }
    EXPECT_EQ(host::text::firstCharacter("").size + host::text::lastCharacter("").size, 0U);
}

TEST(KeyConversion, FoldsCaseAndWidthTrimsBlanksAndKeepsOnlyTheDigitsOfPlainNumbers) {
    for (const auto& [typed, key] : Pairs{
             {" \t\u00A0\u3000Ann\u2003\n", "ann"},
             {"Ａｎｎ　Ｂ", "ann b"},
             {"Jose\u0301 STRASSE ß", "josé strasse ss"},
             {"＋４９\u00A0[30]\u2011{12}.34", "49301234"},
             {"(+49) 30-1", "49301"},
             {"+44 (0)20 (0)", "4420"},
             {"0044(0) 20", "004420"},
             {"44 (0)20", "44020"},
             {"(0)20", "020"},
             {"A\xFF\x80 \xC3", "a\xFF\x80 \xC3"},
             {"A\0B "s, "a\0b"s},
         }) {
        EXPECT_EQ(convert(typed), key);
    }
    for (const std::string& key :
         Strings{"", "*21#", "++49", "4+9", "+", "()- .", "4-a", "1/2", "4 & 5", "٤", "4\0005"s}) {
        EXPECT_EQ(convert(key), key);
        EXPECT_EQ(CommonAPI_IsSearchByT9(key), key == "*21#") << key;
    }
}

TEST(KeypadForm, HasADigitForEachLetterAndLeavesOutWhatHasNoKey) {
    for (const auto& [name, form] : Pairs{
             {"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999 "},
             {"Élodie O'Ñandú-Łukasz", "356343662638585279 "},
             {"Große Ｆirma №４ #3*", "47677334762664#3* "},
             {"Bo\u0308ll Ås", "265527 26355227 "},
             {"Иван 李\xFF\0b"s, "2 "},
         }) {
        EXPECT_EQ(CommonUnits_ToKeyString(name), form) << name;
    }
}

// Whether a text key finds a name, and what of it stands out: here it stands in brackets.
TEST(Matching, FindsTheWordsOfTextAnywhereInANamePastWhatCountsForNothing) {
    const auto marked = [](std::string name, const std::vector<host::text::Part>& parts) {
        for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
            name.insert(part->begin + part->size, "]").insert(part->begin, "[");
        }
        return name;
    };
    for (const auto& [key, name] : Pairs{
             // case, accents and width
             {"ann", "H[ann]a Berg"},
             {"berg", "[Berg]mann Hanna-BERG"},
             {"berg", "Hamberger [BERG]"}, // rather where a word begins
             {"ar`k", "eleven ch[ark]"},
             {"jose g", "[Ｊosé] [G]arcía"},
             {"garcía", "Jose [Garcia]"},
             {"strass", "[Straß]e"},
             {"jos", "[Jos]e\u0301"},
             {"jose", "Dr. [Jose\u0301]"},
             {"小", "李[小]龙"},
             // words in any order
             {"marlowe jed", "[Jed] [Marlowe]"},
             {"Smith, John", "[John] [Smith]"},
             {"ann neil", "[Ann]-Marie O'[Neil]"},
             {"an anna", "[Anna]"},
             {"ann bo", "Ann"},
             // what counts for nothing
             {"oneil", "[O'Neil]"},
             {"o’neil", "[ONeil]"},
             {"o'neil", "[O’Neil]"},
             {"annmarie", "[Ann-Marie] O'Neil"},
             {"eon", "Mari[e O'N]eil"},
             {"vanderlee", "[van der Lee]"},
             {"dr. no", "[Dr] [No]"},
             {"a(b)", "[A.B]."},
             {"-", "Ann"},
             // both spellings
             {"mueller", "[Müller]"},
             {"muller", "[MÜLLER]"},
             {"müller", "[Muller]"},
             {"muell", "[Mu\u0308ll]er"},
             {"joerg muller", "[Jörg] [Müller]"},
             {"soren", "é [Søren]"},
             {"soeren", "[Søren]"},
             {"aas", "[Ås]"},
             {"aebler", "[Æbler]"},
             {"thordur", "[Þórður]"},
             {"ue", "Muller"},
             // digits are the letters that they stand for
             {"5336", "[Jed M]arlowe"},
             {"3556", "Garð[éłłó]"},
             {"266627", "[Ann-Mar]ie"},
             {"685537", "[Müller]"},
             {"6835537", "[Müller]"},
             {"x", "Ann"},
         }) {
        std::string plain = name;
        std::erase_if(plain, [](char byte) { return byte == '[' || byte == ']'; });
        const std::string converted = convert(key);
        EXPECT_EQ(marked(plain, host::text::matchedInName(plain, converted)), name) << key;
        EXPECT_EQ(nameMatches(plain, converted), plain != name || key == "-") << key << " / " << plain;
    }
    const auto inNumber = [&](const std::string& key) {
        return marked("+442079", host::text::matchedInNumber("+442079", key));
    };
    EXPECT_EQ(inNumber("4207"), "+4[4207]9");
    EXPECT_EQ(inNumber("a"), "+442079");
}

// Of a few characters, or so few that keys of any length are found in it, and nearly found.
std::string plainText(std::mt19937& random, std::size_t atMost) {
    const std::string_view characters = random() % 2 == 0 ? "aA@` " : "aA@`bc,de-fg'hZ12345678";
    std::string text;
    for (auto count = random() % (atMost + 1); count > 0; --count) {
        text += characters[random() % characters.size()];
    }
    return text;
}

// As a field is matched that is brought into its forms, character by character.
bool inForms(const std::string& field, const std::string& key) {
    if (CommonAPI_IsSearchByT9(key)) {
        return host::text::folded(field).find(key) != std::string::npos;
    }
    std::string forms;
    host::text::appendNameForms(field, forms);
    const Strings words = host::text::keyWords(key);
    return std::all_of(words.begin(), words.end(), [&](const auto& word) { return forms.find(word) != forms.npos; });
}

TEST(Matching, AgreesWithALookThroughTheForms) {
    std::mt19937 random(2);
    int found = 0;
    for (int i = 0; i < 200'000; ++i) {
        const bool plain = i % 2 == 0;
        const std::string text = plain ? plainText(random, 24) + (i % 16 == 0 ? "é" : "")
                                       : randomText(random, false) + "padding" + randomText(random, false);
        std::string key = !plain       ? randomText(random, false)
                          : i % 4 == 0 ? plainText(random, 10)
                                       : text.substr(random() % (text.size() + 1), random() % 20);
        // A key is made ready for the fields behind the first; the one after it differs from it in a byte.
        for (const bool again : {false, true, false, true}) {
            const bool expected = inForms(text, key);
            found += expected ? 1 : 0;
            ASSERT_EQ(contains(text, key), expected)
                << testing::PrintToString(text) << testing::PrintToString(key) << again;
            if (again && !key.empty()) {
                key[random() % key.size()] = 'a';
            }
            const bool marked = !host::text::matchedInName(text, key).empty();
            const bool isNothing = !CommonAPI_IsSearchByT9(key) && host::text::keyWords(key).empty();
            ASSERT_EQ(marked, nameMatches(text, key) && !isNothing)
                << testing::PrintToString(text) << testing::PrintToString(key);
        }
    }
    EXPECT_GT(found, 100'000);
}

TEST(Matching, OfALongerKeyImpliesThatOfItsBeginning) {
    std::mt19937 random(3);
    int narrowed = 0;
    for (int i = 0; i < 100'000; ++i) {
        const bool valid = i % 8 != 0;
        const std::string typed = randomText(random, valid);
        const std::string longer = convert(typed + randomText(random, valid));
        ASSERT_EQ(convert(longer), longer) << testing::PrintToString(typed);
        const std::string shorter = convert(typed);
        const std::string name = randomText(random, false) + longer + randomText(random, false);
        if (valid && longer.starts_with(shorter) && nameMatches(name, longer)) {
            narrowed += CommonAPI_IsSearchByT9(longer) != CommonAPI_IsSearchByT9(shorter) ? 1 : 0;
            ASSERT_TRUE(nameMatches(name, shorter)) << testing::PrintToString(name) << shorter << " > " << longer;
        }
    }
    EXPECT_GT(narrowed, 1'000) << "too few keys that turn from digits into text";
}

TEST(PageBounds, NeverPassTheLargestIndexAndStayAsTheyAreForNegativeNumbers) {
    constexpr int most = std::numeric_limits<int>::max();
    using Bounds = std::pair<int, int>;
    const auto bounds = [](int from, int count, int max) {
        Bounds is(-7, -7);
        const bool given = CommonAPI_GetFromAndToIndex(&is.first, &is.second, from, count, max) != 0;
        EXPECT_EQ(given, is != Bounds(-7, -7));
        return is;
    };
    EXPECT_EQ(bounds(20, 10, 90), Bounds(20, 30));
    EXPECT_EQ(bounds(5, 0, 90), Bounds(5, 90));
    EXPECT_EQ(bounds(most, most, 90), Bounds(90, 90));
    EXPECT_EQ(bounds(1, most, most), Bounds(1, most));
    for (const auto& refused : {bounds(-1, 10, 90), bounds(0, -1, 90), bounds(0, 1, -1)}) {
        EXPECT_EQ(refused, Bounds(-7, -7));
    }
}

} // namespace
