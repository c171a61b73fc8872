// The forms of a number in which keys of digits are looked for.
//
// A number is searched as its digits are, without "+" at its ends. Where the phone knows how its country dials, a
// number of that country is searched in the two forms in which people type it, however it is stored: as it is dialled
// within the country and from abroad. "020 7946 0041", "+44 20 7946 0041" and "0044 20 7946 0041" are one number then.
//
//     setDiallingRules({.countryCode = "44", .trunkPrefix = "0", .internationalPrefix = "00"});
//     appendNumberForms("+442079460041", forms);    // "02079460041 00442079460041 "
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::text {

// Digits, each of them, and any may be empty.
struct DiallingRules {
    std::string countryCode;         // E.164; empty: numbers are searched as they are
    std::string trunkPrefix;         // ahead of a number within the country
    std::string internationalPrefix; // ahead of a country code
};

// For all numbers from now on, until others are set. While nobody searches or holds forms that were made before.
void setDiallingRules(DiallingRules rules);

// What is wrong with rules that are to be set, for people; empty when nothing is.
std::string problemOf(const DiallingRules& rules);

inline std::atomic<bool> knowsDialling = false; // written by setDiallingRules alone

// Appends the forms of a number, with formSeparator (NameForm.h) behind each. Any thread.
void appendNumberForms(std::string_view number, std::string& out);

// The national significant number (E.164) that a number of the own country ends with. Nothing for any other number, for
// one that is too short to tell, and for what is not all digits behind a "+". Any thread.
std::optional<std::string_view> nationalNumber(std::string_view number);

// The keys that a directory which looks for digits alone must be asked for, so that none is missed that this one finds;
// the key itself is the first. Any thread.
std::vector<std::string> equalKeys(const std::string& key);

} // namespace host::text
