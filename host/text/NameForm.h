// The forms of a name in which keys are looked for, and what a key of text asks for.
//
// A name's compact form is what it folds to (Fold.h) without what counts for nothing: blanks, apostrophes and other
// quotation marks, hyphens, dots, commas and brackets. Thus "oneil" finds O'Neil, and "vanderlee" van der Lee. A name
// with letters that people also write as two has a second form with those: Müller is muller and mueller.
//
// A key of text is cut into words at blanks and commas. It matches a name when each of its words, in its compact form,
// stands anywhere in one of the name's forms: "smith, john" finds John Smith. When a key grows, its last word goes on
// or a new one begins, and all others stay. So what a longer key finds, the shorter one has found.
//
// All functions are pure; any thread. Bytes that are not UTF-8 stay as they are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host::text {

// Stands behind each form, and in none of them.
inline constexpr char formSeparator = ' ';

// What each byte of ASCII gives to a compact form; 0: nothing. NUL is in no name that a person types.
inline constexpr std::array<char, 0x80> compactOfAscii = [] {
    std::array<char, 0x80> forms{};
    for (std::size_t i = 0; i < forms.size(); ++i) {
        forms[i] = static_cast<char>(i >= 'A' && i <= 'Z' ? i + ('a' - 'A') : i);
    }
    for (const char byte : std::string_view("\t\n\v\f\r \"'(),-.[]`{}")) {
        forms[static_cast<unsigned char>(byte)] = '\0';
    }
    return forms;
}();

// Whether a character counts for nothing; false for -1.
bool isIgnored(std::int32_t codePoint);

// Takes the next piece of a name without characters that count for nothing away from text, and gives it; empty when
// there is none left.
std::string_view takeWord(std::string_view& text);

// A character of a name, with the marks that belong to it, and how people also write it: "ue" for ü. Without another
// way of writing it, that is the character itself.
struct Spelling {
    std::string_view character;
    std::string_view spelled;
};

// Takes the first character away from text, which is not empty.
Spelling takeSpelling(std::string_view& text);

// The name with every character as it is also written; empty when no character has another way.
std::string spelledOut(std::string_view name);

// Appends the compact form of text to out, without a separator.
void appendCompact(std::string_view text, std::string& out);

// Appends the one or two compact forms of a name, each with the separator behind it.
void appendNameForms(std::string_view name, std::string& out);

// The same of the keypad forms (Key.h).
void appendKeypadForms(std::string_view name, std::string& out);

// The words of a converted key of text as they are typed.
std::vector<std::string_view> typedWords(std::string_view key);

// The same in their compact forms, without those that count for nothing. None: the key matches every name.
std::vector<std::string> keyWords(std::string_view key);

} // namespace host::text
