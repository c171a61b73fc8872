#include "tools/wideseek/phone/PhoneScreens.h"

#include "tools/wideseek/Text.h"

namespace wideseek {

namespace {

void addField(std::vector<std::string>& lines, const char* label, const std::string& value) {
    if (!value.empty()) {
        lines.push_back(label + value);
    }
}

std::string resultOf(const SourceTrace& source) {
    if (!source.answered && !source.abandoned) {
        return "still being asked";
    }
    if (source.answered && !source.failed) {
        return std::to_string(source.contacts) + " found, " + withOneDecimal(millisecondsOf(source)) + " ms";
    }
    return outcomeOf(source);
}

} // namespace

TextScreen helpScreen() {
    return {"Help",
            {
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
                "Enter        shows what would be dialled",
                "             and adds a recent call",
                "F2, Tab      letters typed as digits:",
                "             abc 2, def 3, ... wxyz 9;",
                "             again: as letters",
                "F3           the contact in full, and",
                "             what each source answered",
                "F4           copies the number",
                "Mouse        a click chooses, a double",
                "             click dials, the wheel moves",
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
        text.lines.push_back(" " + source.name + ": " + resultOf(source));
    }
    if (sources.size() == 1 && sources.front().name == "LDAP") {
        text.lines.emplace_back("The other rows are those of the key before that still match.");
    }
    for (const std::string& problem : problems) {
        text.lines.push_back(std::string(problemPrefix) + problem);
    }
    return text;
}

} // namespace wideseek
