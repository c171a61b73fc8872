#include "tools/wideseek/phone/screens/PhoneFrame.h"

#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/terminal/Paint.h"

namespace wideseek {

namespace {

constexpr int leastWidth = 40;
constexpr int leastHeight = 12;

} // namespace

void paintLabels(const std::vector<Label>& labels) {
    int width = -2;
    for (const Label& label : labels) {
        width += 3 + static_cast<int>(displayWidth(label.key) + displayWidth(label.meaning));
    }
    int column = 0;
    for (const Label& label : labels) {
        if (label.always || width <= COLS) {
            const std::wstring key = paint::wide(label.key);
            const std::wstring meaning = paint::wide(label.meaning);
            paint::put(LINES - 1, column, key, A_BOLD);
            paint::put(LINES - 1, column + paint::widthOf(key) + 1, meaning);
            column += paint::widthOf(key) + paint::widthOf(meaning) + (width <= COLS ? 3 : 2);
        }
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
