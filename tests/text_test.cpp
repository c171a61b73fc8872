// The phone's string helpers: conversion of keys, matching, keypad forms and page bounds.
#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "platform/CommonAPI.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <array>
#include <limits>
#include <random>

namespace {

using namespace std::string_literals;

constexpr int maxIndex = 0x00ffffff;

std::string convert(const std::string& typed) {
    return CommonAPI_StringConvert(typed, STRING_CONVERT_SEARCH_KEY);
}

bool contains(const std::string& text, const std::string& key, bool wholeWord = false) {
    return CommonAPI_StringMatch(text, key, wholeWord, STRING_MATCH_CONTAINS) != 0;
}

// Whether a contact that is nothing but this name matches a converted key, as narrowing asks it.
bool nameMatches(const std::string& name, const std::string& key) {
    return contains(CommonAPI_IsSearchByT9(key) ? CommonUnits_ToKeyString(name) : name, key);
}

std::string utf8(int codePoint) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    return {bytes.begin(), bytes.begin() + utf8proc_encode_char(codePoint, bytes.data())};
}

// Short texts from pieces that are trouble: blanks, marks, wide and composed characters, bytes that are not UTF-8.
std::string randomText(std::mt19937& random, bool valid) {
    static const std::vector<std::string> pieces{
        "a",      "A",      "b",      "4",       "+",      "-",      " ",    "#",    "*",      "(",
        ".",      "9",      "é",      "e\u0301", "\u0301", "\u0345", "α",    "ß",    "İ",      "\u00A0",
        "\u3000", "４",     "Ａ",     "ﾞ",       "ガ",     "한",     "½",    "ﷺ",    "\u200B", "Ø",
        "\u00B4", "\u1E9B", "\u2011", "\0"s,     "\u00AD", "ǅ",      "\xC3", "\xFF", "\x80",   "\xE3\x80"};
    const std::size_t usable = pieces.size() - (valid ? 4 : 0);
    std::string text;
    for (auto count = random() % 6; count > 0; --count) {
        text += pieces[random() % usable];
    }
    return text;
}

TEST(KeyConversion, FoldsCaseAndWidthTrimsBlanksAndKeepsOnlyTheDigitsOfPlainNumbers) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", ""},
        {" \t\u00A0\u3000Ann\u2003\n", "ann"},
        {"Ａｎｎ　Ｂ", "ann b"},
        {"JOSÉ", "josé"},
        {"Jose\u0301", "josé"},
        {"STRASSE ß", "strasse ss"},
        {"+49 (30) 12-34", "493012"
                           "34"},
        {"＋４９\u00A0[30]\u2011{12}.34", "49301234"},
        {"(+49) 30", "4930"},
        {"*21#", "*21#"},
        {" 5 ", "5"},
        {"++49", "++49"},
        {"4+9", "4+9"},
        {"+", "+"},
        {"()- .", "()- ."},
        {"4-a", "4-a"},
        {"Room 12", "room 12"},
        {"1/2", "1/2"},
        {"4 & 5", "4 & 5"},
        {"٤", "٤"},
        {"A\xFF\x80 \xC3", "a\xFF\x80 \xC3"},
        {"A\0B "s, "a\0b"s},
        {"4\0005"s, "4\0005"s},
    };
    for (const auto& [typed, key] : cases) {
        EXPECT_EQ(convert(typed), key) << testing::PrintToString(typed);
    }
}

TEST(KeyConversion, ChangesNothingInAConvertedKey) {
    constexpr int behindLetters = 0x33480; // what comes after them is unassigned, private, or invisible
    for (int codePoint = 0; codePoint < behindLetters; ++codePoint) {
        if (utf8proc_codepoint_valid(codePoint)) {
            const std::string key = convert("x" + utf8(codePoint) + "y" + utf8(codePoint));
            ASSERT_EQ(convert(key), key) << std::hex << codePoint;
        }
    }
    std::mt19937 random(1);
    for (int i = 0; i < 100'000; ++i) {
        const std::string typed = randomText(random, false);
        const std::string key = convert(typed);
        ASSERT_EQ(convert(key), key) << testing::PrintToString(typed);
    }
}

TEST(KeypadKeys, AreDigitsStarAndHashOnly) {
    for (const char* key : {"0", "123456789", "*#", "4*"}) {
        EXPECT_TRUE(CommonAPI_IsSearchByT9(key)) << key;
    }
    for (const char* key : {"", "4a", "+4", "4 5", "４", "-"}) {
        EXPECT_FALSE(CommonAPI_IsSearchByT9(key)) << key;
    }
}

TEST(KeypadForm, HasADigitForEachLetterAndLeavesOutWhatHasNoKey) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999"},
        {"Ann-Marie O'Neil", "2666274366345"},
        {"Élodie Ñandú", "356343"
                         "62638"},
        {"Søren Łukasz Æbelø", "76736"
                               "585279"
                               "232356"},
        {"Große Ｆirma №４", "476773"
                             "34762"
                             "66"
                             "4"},
        {"4a #3*", "42#3*"},
        {"Иван 李", ""},
        {"a\xFF\0b"s, "22"},
        {"", ""},
    };
    for (const auto& [name, form] : cases) {
        EXPECT_EQ(CommonUnits_ToKeyString(name), form) << name;
    }
}

TEST(Trimming, TakesTheGivenCharactersOffBothEndsOnly) {
    EXPECT_EQ(CommonAPI_TrimString("++49+30+", "+", TRIM_TYPE_BOTH_ENDS), "49+30");
    EXPECT_EQ(CommonAPI_TrimString("+++", "+", TRIM_TYPE_BOTH_ENDS), "");
    EXPECT_EQ(CommonAPI_TrimString("ab49ba", "ab", TRIM_TYPE_BOTH_ENDS), "49");
    EXPECT_EQ(CommonAPI_TrimString("49", "", TRIM_TYPE_BOTH_ENDS), "49");
}

TEST(Matching, IgnoresCaseAccentsAndWidthWhereverTheKeyStands) {
    struct Case {
        std::string text, key;
        bool anywhere, asWord;
    };
    const std::vector<Case> cases{
        {"", "", true, true},
        {"Ann", "", true, true},
        {"", "a", false, false},
        {"Ann", "\u0301", true, true},
        {"Hanna Berg", "ann", true, false},
        {"Hanna Berg", "BERG", true, true},
        {"Hanna Berg Bergmann", "berg", true, true},
        {"Bergmann Hanna-Berg", "berg", true, true},
        {"eleven char@k", "ar`k", false, false},
        {"eleven char@K[", "@k[", true, false},
        {"12345678 abcdefgh", "h", true, false},
        {"12345678 abcdefgh", "ghi", false, false},
        {"José García", "jose g", true, false},
        {"Jose Garcia", "garcía", true, true},
        {"Ｊｏｓｅ", "jose", true, true},
        {"Straße", "strass", true, false},
        {"Søren", "soren", true, true},
        {"Éé", "é", true, false},
        {"é ann", "ann", true, true},
        {"éann", "ann", true, false},
        {"李小龙", "小", true, false},
        {"a\xFFz\xC3", "\xFFz", true, false},
        {"a\0bc"s, "\0b"s, true, false},
        {"4930123456", "0123", true, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(contains(c.text, c.key), c.anywhere) << c.text << " / " << c.key;
        EXPECT_EQ(contains(c.text, c.key, true), c.asWord) << c.text << " / " << c.key;
    }
}

TEST(Matching, AgreesWithALookThroughTheFoldedText) {
    std::mt19937 random(2);
    int found = 0;
    for (int i = 0; i < 100'000; ++i) {
        const std::string text = randomText(random, false) + "padding" + randomText(random, false);
        const std::string key = randomText(random, false);
        const bool expected = host::text::folded(text).find(host::text::folded(key)) != std::string::npos;
        found += expected ? 1 : 0;
        ASSERT_EQ(contains(text, key), expected) << testing::PrintToString(text) << testing::PrintToString(key);
    }
    EXPECT_GT(found, 5'000);
}

TEST(Matching, OfALongerKeyImpliesThatOfItsBeginning) {
    std::mt19937 random(3);
    int narrowed = 0;
    for (int i = 0; i < 100'000; ++i) {
        const std::string typed = randomText(random, true);
        const std::string longer = convert(typed + randomText(random, true));
        const std::string shorter = convert(typed);
        const std::string name = randomText(random, false) + longer + randomText(random, false);
        if (longer.starts_with(shorter) && nameMatches(name, longer)) {
            narrowed += CommonAPI_IsSearchByT9(longer) != CommonAPI_IsSearchByT9(shorter) ? 1 : 0;
            ASSERT_TRUE(nameMatches(name, shorter)) << testing::PrintToString(name) << shorter << " > " << longer;
        }
    }
    EXPECT_GT(narrowed, 1'000) << "too few keys that turn from digits into text";
}

TEST(Finding, AgreesWithTheStandardLibraryAtEveryPlace) {
    std::mt19937 random(4);
    for (int i = 0; i < 200'000; ++i) {
        std::string hay(random() % 40, '\0');
        std::string needle(1 + random() % 4, '\0');
        for (std::string* text : {&hay, &needle}) {
            for (char& byte : *text) {
                byte = "\0\x80\xFF\x01"[random() % 4];
            }
        }
        const std::size_t from = random() % 42;
        ASSERT_EQ(host::text::findBytes(hay, needle, from), hay.find(needle, from));
    }
}

TEST(PageBounds, NeverPassTheLargestIndexAndRefuseNegativeNumbers) {
    constexpr int most = std::numeric_limits<int>::max();
    struct Case {
        int from, count, max, accepted, first, end;
    };
    for (const Case& c : std::vector<Case>{{0, 10, maxIndex, 1, 0, 10},
                                           {20, 10, maxIndex, 1, 20, 30},
                                           {5, 0, maxIndex, 1, 5, maxIndex},
                                           {maxIndex - 1, 10, maxIndex, 1, maxIndex - 1, maxIndex},
                                           {most, most, maxIndex, 1, maxIndex, maxIndex},
                                           {most, most, most, 1, most, most},
                                           {1, most, most, 1, 1, most},
                                           {0, 0, 0, 1, 0, 0},
                                           {-1, 10, maxIndex, 0, -7, -7},
                                           {0, -1, maxIndex, 0, -7, -7},
                                           {0, 1, -1, 0, -7, -7}}) {
        int first = -7;
        int end = -7;
        EXPECT_EQ(CommonAPI_GetFromAndToIndex(&first, &end, c.from, c.count, c.max) != 0, c.accepted != 0);
        EXPECT_EQ(first, c.first) << c.from << ", " << c.count;
        EXPECT_EQ(end, c.end) << c.from << ", " << c.count;
        EXPECT_EQ(CommonAPI_GetFromAndToIndex(nullptr, &end, 0, 1, 2), 0);
        EXPECT_EQ(CommonAPI_GetFromAndToIndex(&first, nullptr, 0, 1, 2), 0);
    }
}

} // namespace
