// The phone's string helpers: what a typed key means, what matches it, and the bounds of a page.
//
// All functions may be called from any thread and take any bytes: text is UTF-8, and bytes that are not UTF-8 pass
// through unharmed. Besides what they are given, how the phone's country dials decides what matches a number. Folding
// is Unicode's (https://www.unicode.org/reports/tr15/, full case folding, compatibility decomposition), without the
// phone's locale. A function that needs memory which is not there throws std::bad_alloc, so that no answer is taken for
// one that it is not.
#pragma once

#include <string>

// What a text is converted to.
enum StringConvertType {
    STRING_CONVERT_SEARCH_KEY = 1,
};

// Where a text is trimmed.
enum TrimType {
    TRIM_TYPE_BOTH_ENDS = 1,
};

// How a text is to match a key.
enum StringMatchType {
    STRING_MATCH_CONTAINS = 1,
};

// The key that is searched for when strText is typed. STRING_CONVERT_SEARCH_KEY: letter case and width are folded (full
// width digits and letters become ASCII), blanks at both ends are trimmed, and in what is plainly a number (digits, "*"
// and "#" with blanks, dashes, dots, brackets between them and at most one "+" in front) all but the digits, "*" and
// "#" is dropped. Converting a converted key changes nothing.
std::string CommonAPI_StringConvert(const std::string& strText, StringConvertType eType);

// True when the converted key strKey is to be matched as keypad digits: it is not empty and consists of digits, "*" and
// "#" only.
bool CommonAPI_IsSearchByT9(const std::string& strKey);

// strText without the characters of strChars. TRIM_TYPE_BOTH_ENDS: at both ends.
std::string CommonAPI_TrimString(const std::string& strText, const std::string& strChars, TrimType eType);

// Non-zero when strText matches the converted key strKey. STRING_MATCH_CONTAINS: a key of digits occurs anywhere in
// strText, which is a number without "+" at its ends or a keypad form; where the phone knows how its country dials, in
// any of the ways in which that number is typed. Of any other key, each word, as blanks and commas part them, occurs
// anywhere in the name strText. Letter case, accents and width make no difference to it, and blanks in the name,
// apostrophes, hyphens, dots, commas and brackets count for nothing; letters such as "ü" match "u" and "ue". A key that
// has nothing to look for matches everything, and what a key matches, every beginning of it has matched. bWholeWord is
// false.
int CommonAPI_StringMatch(const std::string& strText, const std::string& strKey, bool bWholeWord,
                          StringMatchType eType);

// The keypad forms of a name, with a blank behind each: each letter as the digit of its key by ITU-T E.161 (abc 2, def
// 3, ghi 4, jkl 5, mno 6, pqrs 7, tuv 8, wxyz 9), accents, case and width folded first; digits, "*" and "#" stay. What
// has no key (blanks, hyphens, apostrophes, other scripts) is left out, so that typing only the letters of a name finds
// it: "Ann-Marie O'Neil" becomes "2666274366345 " and is found by 266627. A name with letters such as "ü" has a second
// form, for "ue".
std::string CommonUnits_ToKeyString(const std::string& strName);

// The bounds of a page: the first row index and the index one past the last for iSearchCount rows from iFromIndex on. A
// count of 0 means all rows from there on. Neither bound passes iMaxIndex, and nothing overflows. Zero, with *piFirst
// and *piEnd left as they are, when a number is negative or a pointer null; else non-zero.
int CommonAPI_GetFromAndToIndex(int* piFirst, int* piEnd, int iFromIndex, int iSearchCount, int iMaxIndex);
