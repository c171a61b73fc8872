#include "tools/wideseek/phone/screens/TextScreen.h"

#include "tools/wideseek/phone/screens/PhoneFrame.h"
#include "tools/wideseek/phone/terminal/Paint.h"

#include <algorithm>
#include <string>

namespace wideseek {

namespace {

constexpr int linesAbove = 2; // the title, a rule
constexpr int linesBelow = 1; // keys
constexpr int textColumn = 2; // behind the sign of the chosen line

// A line as it is on the screen.
struct WrappedLine {
    std::wstring text;
    attr_t attributes = A_NORMAL;
    std::optional<std::size_t> choice;
};

attr_t attributesOf(TextLine::Look look) {
    switch (look) {
    case TextLine::Look::heading:
        return A_BOLD;
    case TextLine::Look::problem:
        return A_BOLD | paint::colour(COLOR_RED);
    case TextLine::Look::plain:
        break;
    }
    return A_NORMAL;
}

std::vector<WrappedLine> wrap(const TextScreen& text, int columns) {
    std::vector<WrappedLine> result;
    for (std::size_t i = 0; i < text.lines.size(); ++i) {
        const TextLine& line = text.lines[i];
        const std::size_t choice = i - text.firstChoice; // large ahead of the first one
        for (std::wstring& part : paint::wrapped(line.text, columns, std::min(line.indent, columns / 2 - 1))) {
            result.push_back({std::move(part), attributesOf(line.look),
                              choice < text.choices ? std::optional(choice) : std::nullopt});
        }
    }
    return result;
}

bool isChosen(const TextScreen& text, const WrappedLine& line) {
    return line.choice && *line.choice == text.chosen;
}

void scroll(TextScreen& text, const std::vector<WrappedLine>& lines) {
    if (text.revealing) {
        const auto chosen = [&](const WrappedLine& line) { return isChosen(text, line); };
        const auto begin = std::find_if(lines.begin(), lines.end(), chosen);
        const auto end = std::find_if_not(begin, lines.end(), chosen);
        text.top = std::min(std::max(text.top, static_cast<int>(end - lines.begin()) - text.room),
                            static_cast<int>(begin - lines.begin()));
        text.revealing = false;
    }
    text.top = std::clamp(text.top, 0, std::max(0, static_cast<int>(lines.size()) - text.room));
}

void paintLine(int line, const WrappedLine& shown, bool chosen) {
    const attr_t reverse = chosen ? A_REVERSE : A_NORMAL;
    paint::put(line, 0, paint::fitted(chosen ? ">" : "", COLS), reverse);
    paint::put(line, textColumn, shown.text, reverse | shown.attributes);
}

void paintKeys(const TextScreen& text, bool scrolls) {
    std::vector<Label> labels = {
        {"Esc", "Back"}, {"Up/Down", text.choices > 1 ? "Choose" : "Scroll", scrolls}, {"F10", "Leave"}};
    if (text.choices > 0) {
        labels.insert(labels.begin() + 1, {{"Enter", "Dial", false}, {"F4", "Copy", false}});
    }
    paintLabels(labels);
}

} // namespace

void paintText(TextScreen& text) {
    erase();
    if (!paintTooSmall()) {
        curs_set(0);
        paint::put(0, 1, paint::fitted(text.title, COLS - 2), A_BOLD);
        paint::putRight(0, text.action + " ", A_NORMAL);
        paint::putRule(1);
        const std::vector<WrappedLine> lines = wrap(text, COLS - textColumn - 1);
        const auto size = static_cast<int>(lines.size());
        text.room = LINES - linesAbove - linesBelow;
        scroll(text, lines);
        text.onScreen.assign(linesAbove, std::nullopt);
        const int end = std::min(size, text.top + text.room);
        for (int i = text.top; i < end; ++i) {
            const WrappedLine& line = lines[static_cast<std::size_t>(i)];
            paintLine(linesAbove + i - text.top, line, isChosen(text, line));
            text.onScreen.push_back(line.choice);
        }
        if (size > text.room) {
            paint::putRight(1, " " + std::to_string(text.top + 1) + "-" + std::to_string(end) + " of " +
                                   std::to_string(size) + " ", A_NORMAL);
        }
        paintKeys(text, size > text.room);
    }
    sendPainted();
}

std::optional<std::size_t> choiceOn(const TextScreen& text, int line) {
    const auto at = static_cast<std::size_t>(line);
    return at < text.onScreen.size() ? text.onScreen[at] : std::nullopt;
}

} // namespace wideseek
