#include "tools/wideseek/phone/screens/PhoneScreens.h"

#include "host/sources/SourceNames.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/EnabledSources.h"
#include "tools/wideseek/phone/screens/PhoneView.h"

#include <algorithm>
#include <utility>

namespace wideseek {

namespace {

using Look = TextLine::Look;

// How wide the column of labels is at least, and at most.
constexpr std::size_t leastLabel = 9;
constexpr std::size_t mostLabel = 20;

// Filled with blanks up to this width.
std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, displayWidth(text)), ' ');
}

std::string resultOf(const SourceTrace& source) {
    if (!source.answered) {
        return source.abandoned ? outcomeOf(source) : "still being asked";
    }
    const std::string time = withOneDecimal(millisecondsOf(source)) + " ms";
    if (source.failed) {
        return "failed after " + time; // why stands among the problems
    }
    return std::to_string(source.contacts) + " found, " + time +
           (source.problem.empty() ? "" : ", cut short: " + source.problem);
}

// "+442079460041 (work)"
std::string shown(const host::ContactNumber& number) {
    const std::string kind(nameOf(number.kind));
    return number.number + (kind.empty() ? "" : " (" + kind + ")");
}

std::string joined(const std::vector<host::ContactNumber>& numbers) {
    std::string result;
    for (const host::ContactNumber& number : numbers) {
        result += (result.empty() ? "" : ", ") + shown(number);
    }
    return result;
}

// A label and what belongs to it, in columns.
TextLine field(const std::string& label, std::size_t width, const std::string& value) {
    return {"  " + padded(label, width) + "  " + value, Look::plain, static_cast<int>(width) + 4};
}

void addNumbers(TextScreen& text, const ContactDetails& contact) {
    if (!contact.name.empty()) {
        text.lines.push_back({"Name    " + contact.name, Look::heading, 8});
    }
    text.firstChoice = text.lines.size();
    text.choices = contact.numbers.size();
    text.chosen = contact.chosen;
    for (const host::ContactNumber& number : contact.numbers) {
        text.lines.push_back({(&number == &contact.numbers.front() ? "Number  " : "        ") + shown(number)});
    }
    text.action = "Enter dials " + contact.numbers[contact.chosen].number;
    text.lines.emplace_back();
}

void addFacts(TextScreen& text, const ContactDetails& contact) {
    std::size_t width = leastLabel;
    for (const ContactDetails::Source& source : contact.sources) {
        for (const auto& [label, value] : source.known.facts) {
            width = std::max(width, std::min(displayWidth(label), mostLabel));
        }
    }
    for (const ContactDetails::Source& source : contact.sources) {
        if (!source.label.empty()) {
            text.lines.push_back({source.label, Look::heading});
        }
        text.lines.push_back(field("Numbers", width, joined(source.known.numbers)));
        for (const auto& [label, value] : source.known.facts) {
            text.lines.push_back(field(label, width, value));
        }
        text.lines.emplace_back();
    }
}

void addProblems(TextScreen& text, const std::vector<std::string>& problems) {
    for (const std::string& problem : problems) {
        text.lines.push_back({std::string(problemPrefix) + problem, Look::problem, 2});
    }
    if (!problems.empty()) {
        text.lines.emplace_back();
    }
}

// The recent calls are what the call log was asked for last; what else is asked for the empty key is not used.
void addRecentCalls(TextScreen& text, const std::vector<SourceTrace>& latest) {
    text.lines.push_back({"Asked for the recent calls", Look::heading});
    const auto calls = std::find_if(latest.rbegin(), latest.rend(),
                                    [](const SourceTrace& source) { return source.name == host::sourceName::callLog; });
    text.lines.push_back(field("Call log", leastLabel, calls == latest.rend() ? "not asked" : resultOf(*calls)));
}

void addSources(TextScreen& text, const std::vector<SourceTrace>& latest, const std::string& key) {
    const std::vector<EnabledSource> sources = enabledSources();
    text.lines.push_back(
        {sources.empty() ? "No source was asked: none is enabled" : "Asked for \"" + key + "\"", Look::heading});
    std::size_t width = 0;
    for (const EnabledSource& source : sources) {
        width = std::max(width, displayWidth(source.label));
    }
    for (const EnabledSource& source : sources) {
        const SourceTrace* trace = traceOf(latest, source.name, source.nth);
        const bool before = trace && trace->key != key;
        text.lines.push_back(field(source.label, width,
                                   (trace ? resultOf(*trace) : "not asked") +
                                       (before ? ", for \"" + trace->key + "\" before it" : "")));
        text.lines.back().look = trace && trace->failed ? Look::problem : Look::plain;
    }
}

} // namespace

TextScreen helpScreen() {
    constexpr std::pair<const char*, const char*> keys[] = {
        {"Type", "searches at each key: digits in numbers, and in names as a keypad types them; letters in names, their "
                 "words in any order"},
        {"Backspace", "erases; Ctrl-W a word, Ctrl-U all before the caret, Ctrl-K all behind it"},
        {"Left Right", "move the caret, with Ctrl by words; Home and End to the ends of what is typed"},
        {"Escape", "clears: the recent calls"},
        {"Up Down", "choose a row; Ctrl-P and Ctrl-N as well"},
        {"PgUp PgDn", "one screen of rows"},
        {"Ctrl-Home", "first row; Ctrl-End last"},
        {"Enter", "shows what would be dialled, and makes it a recent call"},
        {"F2, Tab", "letters typed as digits: abc 2, def 3, ... wxyz 9; again: as letters"},
        {"F3", "the contact in full, to choose a number of it; what each source answered; what is wrong"},
        {"F4", "copies the number"},
        {"F5", "dials the number that is typed, whatever the rows are"},
        {"Mouse", "a click chooses, a double click dials, the wheel moves"},
        {"Ctrl-L", "paints the screen anew"},
        {"Ctrl-Z", "stops the phone until the shell's fg"},
        {"F10, Ctrl-C", "leave"},
    };
    constexpr std::size_t width = 12;
    TextScreen text;
    text.title = "Help";
    for (const auto& [key, meaning] : keys) {
        text.lines.push_back({padded(key, width) + " " + meaning, Look::plain, width + 1});
    }
    return text;
}

TextScreen detailsScreen(const ContactDetails* contact, const SourceWatch& watch, const PhoneProblems& problems) {
    TextScreen text;
    text.title = "Details";
    if (contact) {
        addNumbers(text, *contact);
    }
    addProblems(text, problems.standingEach());
    if (contact) {
        addFacts(text, *contact);
    }
    const std::string key = watch.key().value_or("");
    if (key.empty()) {
        addRecentCalls(text, watch.latest());
    } else {
        addSources(text, watch.latest(), key);
    }
    if (const std::vector<std::string> earlier = problems.earlier(); !earlier.empty()) {
        text.lines.emplace_back();
        text.lines.push_back({"What went wrong before", Look::heading});
        for (const std::string& problem : earlier) {
            text.lines.push_back({"  " + problem, Look::plain, 4});
        }
    }
    return text;
}

} // namespace wideseek
