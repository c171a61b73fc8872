// The phone's string helpers: conversion of keys, matching, keypad forms and page bounds.
#include "host/text/Fold.h"
#include "platform/CommonAPI.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

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

TEST(KeyConversion, FoldsCaseAndWidthTrimsBlanksAndKeepsOnlyTheDigitsOfPlainNumbers) {
    for (const auto& [typed, key] : Pairs{
             {" \t\u00A0\u3000Ann\u2003\n", "ann"},
             {"Ａｎｎ　Ｂ", "ann b"},
             {"Jose\u0301 STRASSE ß", "josé strasse ss"},
             {"＋４９\u00A0[30]\u2011{12}.34", "49301234"},
             {"(+49) 30-1", "49301"},
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
             {"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999"},
             {"Élodie O'Ñandú-Łukasz", "356343662638585279"},
             {"Große Ｆirma №４ #3*", "47677334762664#3*"},
             {"Иван 李\xFF\0b"s, "2"},
         }) {
        EXPECT_EQ(CommonUnits_ToKeyString(name), form) << name;
    }
}

TEST(Matching, IgnoresCaseAccentsAndWidthWhereverTheKeyStands) {
    const struct {
        std::string text, key;
        bool anywhere, asWord;
    } cases[] = {
        {"Ann", "", true, true},
        {"Hanna Berg", "ann", true, false},
        {"Bergmann Hanna-BERG", "berg", true, true},
        {"eleven char@k", "ar`k", false, false},
        {"Ｊosé García", "jose g", true, false},
        {"Jose Garcia", "garcía", true, true},
        {"Straße", "strass", true, false},
        {"é Søren", "soren", true, true},
        {"éann", "ann", true, false},
        {"李小龙", "小", true, false},
    };
    for (const auto& [text, key, anywhere, asWord] : cases) {
        EXPECT_EQ(contains(text, key), anywhere) << text << " / " << key;
        EXPECT_EQ(contains(text, key, true), asWord) << text << " / " << key;
    }
}

// Of a few characters, or so few that keys of any length are found in it, and nearly found.
std::string plainText(std::mt19937& random, std::size_t atMost) {
    const std::string_view characters = random() % 2 == 0 ? "aA@`" : "aA@`bcdefghZ12345678";
    std::string text;
    for (auto count = random() % (atMost + 1); count > 0; --count) {
        text += characters[random() % characters.size()];
    }
    return text;
}

TEST(Matching, AgreesWithALookThroughTheFoldedText) {
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
            const bool expected = host::text::folded(text).find(host::text::folded(key)) != std::string::npos;
            found += expected ? 1 : 0;
            ASSERT_EQ(contains(text, key), expected)
                << testing::PrintToString(text) << testing::PrintToString(key) << again;
            if (again && !key.empty()) {
                key[random() % key.size()] = 'a';
            }
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

TEST(PageBounds, NeverPassTheLargestIndexAndRefuseNegativeNumbers) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int refused = -7; // and left as they were
    const struct {
        int from, count, max, first, end;
    } cases[] = {
        {20, 10, 90, 20, 30},          {5, 0, 90, 5, 90},
        {89, 10, 90, 89, 90},          {most, most, 90, 90, 90},
        {1, most, most, 1, most},      {-1, 10, 90, refused, refused},
        {0, -1, 90, refused, refused}, {0, 1, -1, refused, refused},
    };
    for (const auto& c : cases) {
        int first = refused;
        int end = refused;
        EXPECT_EQ(CommonAPI_GetFromAndToIndex(&first, &end, c.from, c.count, c.max) != 0, c.first != refused);
        EXPECT_EQ(std::pair(first, end), std::pair(c.first, c.end)) << c.from << ", " << c.count;
    }
}

} // namespace
