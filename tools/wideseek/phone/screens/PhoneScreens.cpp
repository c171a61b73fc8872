#include "tools/wideseek/phone/screens/PhoneScreens.h"

#include "host/sources/SourceNames.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/EnabledSources.h"
#include "tools/wideseek/phone/screens/PhoneView.h"

#include <algorithm>
#include <utility>

namespace wideseek {

namespace {

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
        return "failed after " + time + (source.problem.empty() ? "" : ": " + source.problem);
    }
    return std::to_string(source.contacts) + " found, " + time + (source.problem.empty() ? "" : ": " + source.problem);
}

void addField(TextScreen& text, const std::string& label, const std::string& value) {
    text.lines.push_back("  " + padded(label, 12) + "  " + value);
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

void addContact(TextScreen& text, const ContactDetails& contact) {
    if (!contact.name.empty()) {
        text.lines.push_back("Name    " + contact.name);
    }
    text.firstChoice = text.lines.size();
    text.choices = contact.numbers.size();
    text.chosen = contact.chosen;
    for (const host::ContactNumber& number : contact.numbers) {
        text.lines.push_back((&number == &contact.numbers.front() ? "Number  " : "        ") + shown(number));
    }
    text.action = "Enter dials " + contact.numbers[contact.chosen].number;
    for (const ContactDetails::Source& source : contact.sources) {
        text.lines.emplace_back();
        if (!source.label.empty()) {
            text.lines.push_back(source.label);
        }
        addField(text, "Numbers", joined(source.known.numbers));
        for (const auto& [label, value] : source.known.facts) {
            addField(text, label, value);
        }
    }
    text.lines.emplace_back();
}

// The recent calls are what the call log was asked for last; what else is asked for the empty key is not used.
void addRecentCalls(TextScreen& text, const std::vector<SourceTrace>& latest) {
    text.lines.emplace_back("Asked for the recent calls:");
    const auto calls = std::find_if(latest.rbegin(), latest.rend(),
                                    [](const SourceTrace& source) { return source.name == host::sourceName::callLog; });
    text.lines.push_back("  Call log  " + (calls == latest.rend() ? "not asked" : resultOf(*calls)));
}

void addSources(TextScreen& text, const std::vector<SourceTrace>& latest, const std::string& key) {
    const std::vector<EnabledSource> sources = enabledSources();
    text.lines.push_back(sources.empty() ? "No source was asked: none is enabled." : "Asked for \"" + key + "\":");
    std::size_t width = 0;
    for (const EnabledSource& source : sources) {
        width = std::max(width, displayWidth(source.label));
    }
    for (const EnabledSource& source : sources) {
        const SourceTrace* trace = traceOf(latest, source.name, source.nth);
        const bool before = trace && trace->key != key;
        text.lines.push_back("  " + padded(source.label, width) + "  " + (trace ? resultOf(*trace) : "not asked") +
                             (before ? ", for \"" + trace->key + "\" before it" : ""));
    }
}

} // namespace

TextScreen helpScreen() {
    TextScreen text;
    text.title = "Help";
    text.lines = {
        "Type         searches at each key:",
        "             digits in numbers and names",
        "             as a keypad types them,",
        "             letters in names",
        "Backspace    erases; Ctrl-W a word,",
        "             Ctrl-U Ctrl-K all before and",
        "             behind the caret",
        "Left Right   move the caret; Home End",
        "             to the ends of what is typed",
        "Escape       clears: the recent calls",
        "Up Down      choose a row",
        "Page Up/Down one screen of rows",
        "Ctrl-Home    first row; Ctrl-End last",
        "Enter        shows what would be",
        "             dialled; a recent call",
        "F2, Tab      letters typed as digits:",
        "             abc 2, def 3, ... wxyz 9;",
        "             again: as letters",
        "F3           the contact in full, to",
        "             choose a number of it; what",
        "             each source answered; what",
        "             is wrong",
        "F4           copies the number",
        "Mouse        a click chooses, a double",
        "             click dials, the wheel moves",
        "Ctrl-L       paints the screen anew",
        "F10, Ctrl-C  leave",
    };
    return text;
}

TextScreen detailsScreen(const ContactDetails* contact, const SourceWatch& watch,
                         const std::vector<std::string>& problems) {
    TextScreen text;
    text.title = "Details";
    if (contact) {
        addContact(text, *contact);
    }
    const std::string key = watch.key().value_or("");
    if (key.empty()) {
        addRecentCalls(text, watch.latest());
    } else {
        addSources(text, watch.latest(), key);
    }
    for (const std::string& problem : problems) {
        text.lines.push_back(std::string(problemPrefix) + problem);
    }
    return text;
}

} // namespace wideseek
