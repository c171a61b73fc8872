// What a typed key means and what matches it.
#include "platform/CommonAPI.h"
#include "platform_check/Check.h"
#include "platform_check/Match.h"

#include <climits>
#include <string>

namespace platform_check {

namespace {

bool matches(const std::string& text, const std::string& key) {
    return CommonAPI_StringMatch(text, key, false, STRING_MATCH_CONTAINS) != 0;
}

std::string trimmed(const std::string& text, const std::string& characters) {
    return CommonAPI_TrimString(text, characters, TRIM_TYPE_BOTH_ENDS);
}

// Whether letters other than those of ASCII are folded at all.
bool knowsLettersBeyondAscii() {
    return matches("Émile", keyOf("émile")) || keyOf("５") == "5";
}

constexpr const char* asciiOnly = "the phone folds the letters of ASCII alone";

const std::string typedKeys[] = {
    "",
    " ",
    "  Ann  Lee ",
    "ANN",
    "o'neil",
    "Ann-Marie",
    "53-01",
    "(020) 7946",
    "+44 20 7946",
    "++44",
    "*21#",
    "5 3 . 0",
    "a1b2",
    "-",
    "+",
    "()",
    "Zürich",
    "STRAßE",
    "İ",
    "５",
    "\xFF\xFE",
    "a\xC3",
    "a\xE2\x80\x8F", // with a mark that cannot be seen
    std::string("a\0b", 3),
};

const std::string names[] = {"Ann-Marie O'Neil", "Ann Lee",     "jed FOX 2", "Lee, Ann (home)", "Åke Örn",
                             "Müller",           "5 Star Taxi", "A",         "王小明"};

void convertingTwiceChangesNothing(Trial& trial) {
    for (const std::string& typed : typedKeys) {
        const std::string once = keyOf(typed);
        const std::string twice = keyOf(once);
        if (!trial.expect(once == twice, "\"%s\" became \"%s\", and that became \"%s\"", typed.c_str(), once.c_str(),
                          twice.c_str())) {
            return;
        }
    }
}

struct Conversion {
    const char* typed;
    const char* key;
};

void expectConversions(Trial& trial, std::initializer_list<Conversion> conversions) {
    for (const Conversion& each : conversions) {
        const std::string key = keyOf(each.typed);
        trial.expect(key == each.key, "\"%s\" became \"%s\" in place of \"%s\"", each.typed, key.c_str(), each.key);
    }
}

void keysAreFolded(Trial& trial) {
    trial.expect(keyOf("ANN") == keyOf("ann"), "\"ANN\" became \"%s\", \"ann\" became \"%s\"", keyOf("ANN").c_str(),
                 keyOf("ann").c_str());
    expectConversions(trial, {{" 53 ", "53"}, {"", ""}, {"  ", ""}, {"*21#", "*21#"}});
}

void numbersAreBare(Trial& trial) {
    expectConversions(trial, {{"53-01", "5301"}, {"(020) 79.46", "0207946"}, {"+44 20", "4420"}});
}

void widthIsFolded(Trial& trial) {
    if (!knowsLettersBeyondAscii()) {
        trial.skip(asciiOnly);
        return;
    }
    expectConversions(trial, {{"５３", "53"}, {"Ａ", keyOf("a").c_str()}});
}

void digitsAreKeypadKeys(Trial& trial) {
    for (const char* key : {"5", "0123456789", "*#1", "#"}) {
        trial.expect(CommonAPI_IsSearchByT9(key), "\"%s\" is taken for text", key);
    }
    for (const char* key : {"", "a", "5a", "5 3", "+5", "5-", "５"}) {
        trial.expect(!CommonAPI_IsSearchByT9(key), "\"%s\" is taken for digits", key);
    }
}

void trimmingTakesBothEnds(Trial& trial) {
    struct Case {
        const char* text;
        const char* characters;
        const char* left;
    };
    for (const Case& each : {Case{"+44+", "+", "44"}, Case{"  a b ", " ", "a b"}, Case{"abcba", "ab", "c"},
                             Case{"+++", "+", ""}, Case{"", "+", ""}, Case{" a ", "", " a "}}) {
        const std::string left = trimmed(each.text, each.characters);
        trial.expect(left == each.left, "\"%s\" without \"%s\" at its ends became \"%s\" in place of \"%s\"", each.text,
                     each.characters, left.c_str(), each.left);
    }
}

void digitsMatchAnywhere(Trial& trial) {
    for (const char* key : {"5301", "53", "30", "01"}) {
        trial.expect(matches("5301", key), "\"%s\" does not match the number 5301", key);
    }
    trial.expect(!matches("5301", "54"), "\"54\" matches the number 5301");
    trial.expect(!matches("", "5"), "\"5\" matches where there is no number");
}

void wordsMatchAnywhere(Trial& trial) {
    const std::string name = "Ann-Marie O'Neil";
    for (const char* typed : {"ann", "marie", "neil", "NN", "annm", "oneil", "neil ann", "o'n", "ann, neil"}) {
        trial.expect(matches(name, keyOf(typed)), "\"%s\" does not match the name %s", typed, name.c_str());
    }
    for (const char* typed : {"fox", "ann fox", "anne"}) {
        trial.expect(!matches(name, keyOf(typed)), "\"%s\" matches the name %s", typed, name.c_str());
    }
}

void accentsMakeNoDifference(Trial& trial) {
    if (!knowsLettersBeyondAscii()) {
        trial.skip(asciiOnly);
        return;
    }
    for (const char* typed : {"emile", "ÉMILE", "émile"}) {
        trial.expect(matches("Émile", keyOf(typed)), "\"%s\" does not match the name Émile", typed);
    }
    for (const char* typed : {"muller", "mueller", "müller"}) {
        trial.expect(matches("Müller", keyOf(typed)), "\"%s\" does not match the name Müller", typed);
    }
}

void nothingMatchesEverything(Trial& trial) {
    for (const std::string& name : names) {
        trial.expect(matches(name, ""), "the empty key does not match \"%s\"", name.c_str());
    }
    trial.expect(matches("Ann Lee", keyOf(",")), "\",\", which has no word, does not match the name Ann Lee");
}

// Every key that comes up while one of the names is typed, against all of them.
void longerKeysMatchLess(Trial& trial) {
    for (const std::string& name : names) {
        for (const std::string& typed : names) {
            std::string shorter;
            for (const std::string& key : keysWhileTyping(typed)) {
                trial.expect(!isFound(name, {}, key) || isFound(name, {}, shorter) || key.rfind(shorter, 0) != 0,
                             "\"%s\" matches the name %s, and \"%s\" does not", key.c_str(), name.c_str(),
                             shorter.c_str());
                shorter = key;
            }
        }
    }
}

void namesMatchThemselves(Trial& trial) {
    for (const std::string& name : names) {
        trial.expect(matches(name, keyOf(name)), "the name %s is not matched by itself, typed as \"%s\"", name.c_str(),
                     keyOf(name).c_str());
        const std::string form = CommonUnits_ToKeyString(name);
        const std::string digits = form.substr(0, form.find(' '));
        for (std::size_t length = 1; length <= digits.size(); ++length) {
            trial.expect(matches(form, digits.substr(0, length)),
                         "the keypad form \"%s\" is not matched by its beginning \"%s\"", form.c_str(),
                         digits.substr(0, length).c_str());
        }
    }
}

void lettersBecomeDigits(Trial& trial) {
    struct Case {
        const char* name;
        const char* form;
    };
    for (const Case& each :
         {Case{"Ann-Marie O'Neil", "2666274366345 "}, Case{"abcdefghijklmnopqrstuvwxyz", "22233344455566677778889999 "},
          Case{"5 Star *1#", "57827*1# "}}) {
        const std::string form = CommonUnits_ToKeyString(each.name);
        trial.expect(form == each.form, "\"%s\" became \"%s\" in place of \"%s\"", each.name, form.c_str(), each.form);
    }
}

struct Bounds {
    int from, count, max, first, end;
};

void boundsHoldAtTheEdges(Trial& trial) {
    constexpr int most = INT_MAX;
    for (const Bounds& each :
         {Bounds{0, 10, 100, 0, 10}, Bounds{95, 10, 100, 95, 100}, Bounds{100, 10, 100, 100, 100},
          Bounds{200, 10, 100, 100, 100}, Bounds{5, 0, 100, 5, 100}, Bounds{0, 0, 0, 0, 0},
          Bounds{most, most, most, most, most}, Bounds{1, most, most, 1, most}, Bounds{most, 1, most, most, most},
          Bounds{most, most, 0, 0, 0}, Bounds{10, most, 100, 10, 100}, Bounds{most - 1, 1, most, most - 1, most}}) {
        int first = -7;
        int end = -7;
        const int taken = CommonAPI_GetFromAndToIndex(&first, &end, each.from, each.count, each.max);
        if (!trial.expect(taken != 0 && first == each.first && end == each.end,
                          "from %d, count %d, of %d: result %d, first %d, end %d", each.from, each.count, each.max,
                          taken, first, end)) {
            return;
        }
    }
}

void negativeBoundsAreRefused(Trial& trial) {
    for (const Bounds& each : {Bounds{-1, 10, 100, 0, 0}, Bounds{0, -1, 100, 0, 0}, Bounds{0, 10, -1, 0, 0},
                               Bounds{INT_MIN, INT_MIN, INT_MIN, 0, 0}}) {
        int first = -7;
        int end = -9;
        const int taken = CommonAPI_GetFromAndToIndex(&first, &end, each.from, each.count, each.max);
        trial.expect(taken == 0 && first == -7 && end == -9,
                     "from %d, count %d, of %d: result %d, first set to %d, end to %d", each.from, each.count, each.max,
                     taken, first, end);
    }
    int bound = -7;
    trial.expect(CommonAPI_GetFromAndToIndex(nullptr, &bound, 0, 1, 2) == 0 &&
                     CommonAPI_GetFromAndToIndex(&bound, nullptr, 0, 1, 2) == 0 && bound == -7,
                 "a null pointer was taken");
}

constexpr Check checks[] = {
    {"converting twice changes nothing", "CommonAPI_StringConvert", "CommonAPI.h",
     "Converting a converted key changes nothing.",
     "a late LDAP answer is taken for the key it was asked for, which is converted again",
     convertingTwiceChangesNothing},
    {"keys are folded", "CommonAPI_StringConvert", "CommonAPI.h",
     "letter case and width are folded (full width digits and letters become ASCII), blanks at both ends are trimmed",
     "a key finds the same however it is typed", keysAreFolded},
    {"numbers are typed with or without dashes", "CommonAPI_StringConvert", "CommonAPI.h",
     "all but the digits, \"*\" and \"#\" is dropped", "a number is found however it is written", numbersAreBare},
    {"full width is folded", "CommonAPI_StringConvert", "CommonAPI.h", "full width digits and letters become ASCII",
     "a key finds the same however it is typed", widthIsFolded},
    {"digits are keypad keys", "CommonAPI_IsSearchByT9", "CommonAPI.h",
     "it is not empty and consists of digits, \"*\" and \"#\" only",
     "digits look through numbers and keypad forms, text through names", digitsAreKeypadKeys},
    {"trimming takes both ends", "CommonAPI_TrimString", "CommonAPI.h",
     "strText without the characters of strChars. TRIM_TYPE_BOTH_ENDS: at both ends.",
     "a number is found by its digits, whether or not it begins with \"+\"", trimmingTakesBothEnds},
    {"digits match anywhere", "CommonAPI_StringMatch", "CommonAPI.h",
     "a key of digits occurs anywhere in strText, which is a number without \"+\" at its ends or a keypad form",
     "a longer key keeps the rows that it matches", digitsMatchAnywhere},
    {"words match anywhere", "CommonAPI_StringMatch", "CommonAPI.h",
     "Of any other key, each word, as blanks and commas part them, occurs anywhere in the name strText.",
     "a longer key keeps the rows that it matches", wordsMatchAnywhere},
    {"accents make no difference", "CommonAPI_StringMatch", "CommonAPI.h",
     "Letter case, accents and width make no difference to it", "a name is found by the letters that a keypad has",
     accentsMakeNoDifference},
    {"a key without words matches everything", "CommonAPI_StringMatch", "CommonAPI.h",
     "A key that has nothing to look for matches everything",
     "the first character of a longer key does not empty the screen", nothingMatchesEverything},
    {"a longer key matches less", "CommonAPI_StringMatch", "CommonAPI.h",
     "what a key matches, every beginning of it has matched",
     "a longer key is answered from the rows at hand, and shows what a fresh search would", longerKeysMatchLess},
    {"names match themselves", "CommonAPI_StringMatch", "CommonAPI.h",
     "a key of digits occurs anywhere in strText, which is a number without \"+\" at its ends or a keypad form",
     "typing a name to its end finds it", namesMatchThemselves},
    {"letters become digits", "CommonUnits_ToKeyString", "CommonAPI.h",
     "each letter as the digit of its key by ITU-T E.161 (abc 2, def 3, ghi 4, jkl 5, mno 6, pqrs 7, tuv 8, wxyz 9), "
     "accents, case and width folded first; digits, \"*\" and \"#\" stay.",
     "a name is found by typing it on the keypad", lettersBecomeDigits},
    {"bounds hold at the edges", "CommonAPI_GetFromAndToIndex", "CommonAPI.h",
     "Neither bound passes iMaxIndex, and nothing overflows.", "a page has the rows that were asked for, and no others",
     boundsHoldAtTheEdges},
    {"negative bounds are refused", "CommonAPI_GetFromAndToIndex", "CommonAPI.h",
     "Zero, with *piFirst and *piEnd left as they are, when a number is negative or a pointer null",
     "a page that cannot be is not sent", negativeBoundsAreRefused},
};

} // namespace

constexpr Group strings = {"strings", checks};

} // namespace platform_check
