#include "tools/wideseek/phone/screens/TextScreen.h"

#include "tools/wideseek/phone/screens/PhoneFrame.h"
#include "tools/wideseek/phone/terminal/Paint.h"

#include <algorithm>
#include <iterator>

namespace wideseek {

namespace {

constexpr int linesAbove = 2; // the title, a rule
constexpr int linesBelow = 1; // keys
constexpr int textColumn = 2; // behind the sign of the chosen line

struct Wrapped {
    std::vector<std::wstring> lines;
    int chosenBegin = 0; // of the lines, those of the chosen one
    int chosenEnd = 0;
};

Wrapped wrap(const TextScreen& text, int columns) {
    Wrapped result;
    for (std::size_t i = 0; i < text.lines.size(); ++i) {
        const bool chosen = text.choices > 0 && i == text.firstChoice + text.chosen;
        const auto begin = static_cast<int>(result.lines.size());
        std::vector<std::wstring> parts = paint::wrapped(text.lines[i], columns);
        std::move(parts.begin(), parts.end(), std::back_inserter(result.lines));
        if (chosen) {
            result.chosenBegin = begin;
            result.chosenEnd = static_cast<int>(result.lines.size());
        }
    }
    return result;
}

void scroll(TextScreen& text, const Wrapped& wrapped, int room) {
    if (text.revealing) {
        text.top = std::min(std::max(text.top, wrapped.chosenEnd - room), wrapped.chosenBegin);
        text.revealing = false;
    }
    text.top = std::clamp(text.top, 0, std::max(0, static_cast<int>(wrapped.lines.size()) - room));
}

} // namespace

void paintText(TextScreen& text) {
    erase();
    if (!paintTooSmall()) {
        curs_set(0);
        paint::put(0, 1, paint::fitted(text.title, COLS - 2), A_BOLD);
        paint::putRight(0, text.action + " ", A_NORMAL);
        paint::putRule(1);
        const Wrapped wrapped = wrap(text, COLS - textColumn - 1);
        const auto size = static_cast<int>(wrapped.lines.size());
        const int room = LINES - linesAbove - linesBelow;
        scroll(text, wrapped, room);
        for (int i = text.top; i < std::min(size, text.top + room); ++i) {
            const int line = linesAbove + i - text.top;
            const bool chosen = i >= wrapped.chosenBegin && i < wrapped.chosenEnd;
            paint::put(line, 0, paint::fitted(chosen ? ">" : "", COLS), chosen ? A_REVERSE : A_NORMAL);
            paint::put(line, textColumn, wrapped.lines[static_cast<std::size_t>(i)], chosen ? A_REVERSE : A_NORMAL);
        }
        std::vector<Label> labels = {
            {"Esc", "Back"}, {"Up/Down", text.choices > 1 ? "Choose" : "Scroll", size > room}, {"F10", "Leave"}};
        if (text.choices > 0) {
            labels.insert(labels.begin() + 1, {{"Enter", "Dial", false}, {"F4", "Copy", false}});
        }
        paintLabels(labels);
    }
    sendPainted();
}

} // namespace wideseek
