#include "tools/wideseek/PhoneScreens.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace wideseek {

namespace {

void addField(std::vector<std::string>& lines, const char* label, const std::string& value) {
    if (!value.empty()) {
        lines.push_back(label + value);
    }
}

std::string outcomeOf(const SourceTrace& source) {
    if (source.abandoned) {
        return "given up for a newer key";
    }
    if (!source.answered) {
        return "still being asked";
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%zu found, %.1f ms", source.contacts,
                  std::chrono::duration<double, std::milli>(*source.answered - source.asked).count());
    return source.failed ? "failed" : text.data();
}

} // namespace

TextScreen helpScreen() {
    return {"Help",
            {
                "Type         searches at each key:",
                "             digits in numbers and names",
                "             as a keypad types them,",
                "             letters in names",
                "Backspace    erases",
                "Escape       clears: the recent calls",
                "Up Down      choose a row",
                "Page Up/Down one screen of rows",
                "Home End     first and last row",
                "Enter        shows what would be dialed",
                "             and adds a recent call",
                "F2           letters typed as digits:",
                "             abc 2, def 3, ... wxyz 9;",
                "             again: as letters",
                "F3, Tab      the contact in full, and",
                "             what each source answered",
                "Ctrl-L       paints the screen anew",
                "F10, Ctrl-C  leave",
            }};
}

TextScreen detailsScreen(const WideseekItemData* contact, const std::vector<SourceTrace>& sources,
                         const std::vector<std::string>& problems) {
    TextScreen text{"Details", {}};
    if (contact) {
        addField(text.lines, "Name    ", contact->strName);
        addField(text.lines, "Number  ", contact->strNumber);
        addField(text.lines, "Extra   ", contact->strExtra2);
        addField(text.lines, "        ", contact->strExtra1);
        addField(text.lines, "        ", contact->iExtra == -1 ? "" : std::to_string(contact->iExtra));
        text.lines.emplace_back();
    }
    if (sources.empty()) {
        text.lines.emplace_back("No source was asked: none is enabled.");
    } else {
        const std::string& key = sources.front().key;
        text.lines.push_back(key.empty() ? "Asked for the recent calls:" : "Asked for \"" + key + "\":");
    }
    for (const SourceTrace& source : sources) {
        text.lines.push_back(" " + source.name + ": " + outcomeOf(source));
    }
    if (sources.size() == 1 && sources.front().name == "LDAP") {
        text.lines.emplace_back("The other rows are those of the key before that still match.");
    }
    for (const std::string& problem : problems) {
        text.lines.push_back("Problem: " + problem);
    }
    return text;
}

} // namespace wideseek
