#include "tools/wideseek/phone/screens/PhoneFrame.h"

#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/terminal/Paint.h"

namespace wideseek {

namespace {

constexpr int leastWidth = 40;
constexpr int leastHeight = 12;

int widthOf(const Label& label) {
    return static_cast<int>(displayWidth(label.key) + 1 + displayWidth(label.meaning));
}

// Of all labels, or of those that are always shown, with as much between them.
int widthOf(const std::vector<Label>& labels, bool all, int gap) {
    int width = -gap;
    for (const Label& label : labels) {
        width += all || label.always ? widthOf(label) + gap : 0;
    }
    return width;
}

} // namespace

void paintLabels(const std::vector<Label>& labels) {
    constexpr int wideGap = 2;
    const int gap = widthOf(labels, true, wideGap) <= COLS ? wideGap : 1;
    int left = COLS - widthOf(labels, false, gap);
    int column = 0;
    for (const Label& label : labels) {
        const int width = widthOf(label) + gap;
        if (!label.always && width > left) {
            continue;
        }
        left -= label.always ? 0 : width;
        paint::put(LINES - 1, column, paint::wide(label.key), A_BOLD);
        paint::put(LINES - 1, column + static_cast<int>(displayWidth(label.key)) + 1, paint::wide(label.meaning));
        column += width;
    }
}

bool paintTooSmall() {
    if (COLS >= leastWidth && LINES >= leastHeight) {
        return false;
    }
    curs_set(0);
    paint::put(0, 0, paint::wide("The window is too small:"));
    paint::put(1, 0, paint::wide("it has " + std::to_string(COLS) + "x" + std::to_string(LINES) + ","));
    paint::put(2, 0,
               paint::wide("the phone needs " + std::to_string(leastWidth) + "x" + std::to_string(leastHeight) + "."));
    return true;
}

void sendPainted() {
    wnoutrefresh(stdscr);
    doupdate();
}

void repaint() {
    clearok(curscr, TRUE);
}

} // namespace wideseek
