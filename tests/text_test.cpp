// The phone's string helpers: conversion of keys, matching, keypad forms and page bounds.
#include "host/text/Fold.h"
#include "host/text/MatchedPart.h"
#include "host/text/Utf8.h"
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
        bool found;
    } cases[] = {
        {"Ann", "", true},
        {"Hanna Berg", "ann", true},
        {"Bergmann Hanna-BERG", "berg", true},
        {"eleven char@k", "ar`k", false},
        {"Ｊosé García", "jose g", true},
        {"Jose Garcia", "garcía", true},
        {"Straße", "strass", true},
        {"é Søren", "soren", true},
        {"éann", "ann", true},
        {"李小龙", "小", true},
    };
    for (const auto& [text, key, found] : cases) {
        EXPECT_EQ(contains(text, key), found) << text << " / " << key;
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

// What a name is found for stands out, and nothing does that no key has found: here it stands in brackets.
TEST(Matching, NamesThePartThatWasFound) {
    const auto marked = [](std::string text, const std::optional<host::text::Part>& part) {
        return part ? text.insert(part->begin + part->size, "]").insert(part->begin, "[") : text;
    };
    for (const auto& [key, name] : Pairs{
             {"5336", "[Jed M]arlowe"},
             {"marl", "Jed [Marl]owe"},
             {"3556", "Garð[éłłó]"},
             {"jose", "Dr. [Jose\u0301]"},
             {"jos", "[Jos]e\u0301"},
             {"ss m", "Vo[ß M]itte"},
             {"s", "Gro[ß]e"},
             {"龙", "李小[龙]"},
             {"266627", "[Ann-Mar]ie"},
             {"x", "Ann"},
             {"", "Ann"},
         }) {
        std::string plain = name;
        std::erase_if(plain, [](char byte) { return byte == '[' || byte == ']'; });
        EXPECT_EQ(marked(plain, host::text::matchedInName(plain, key)), name) << key;
    }
    EXPECT_EQ(marked("+442079", host::text::matchedInNumber("+442079", "4207")), "+4[4207]9");
    EXPECT_EQ(marked("5a", host::text::matchedInNumber("5a", "a")), "5a");

    // It agrees with what is found.
    std::mt19937 random(7);
    for (int i = 0; i < 50'000; ++i) {
        const std::string name = randomText(random, false) + randomText(random, false);
        const std::string key = convert(randomText(random, false));
        const bool folds = !host::text::folded(key).empty();
        ASSERT_EQ(host::text::matchedInName(name, key).has_value(), folds && nameMatches(name, key))
            << testing::PrintToString(name) << testing::PrintToString(key);
    }
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
