// Paints the phone's screens on the terminal, as large as it is; only what has changed is sent.
//
// Text is made harmless (Text.h) and cut at its display width. Colours are pairs of the foreground's number and the
// terminal's own background; a terminal without them shows the rest. A Terminal exists. One thread.
#pragma once

#include "tools/wideseek/phone/PhoneModel.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

struct PhoneStatus {
    bool ldapAsked = false;
    std::optional<double> pageTime; // milliseconds from asking to the page that was waited for
    std::optional<double> lateTime; // and to the last late page
    std::string message;            // behind problemPrefix, it tells of a problem
};

inline constexpr std::string_view problemPrefix = "Problem: ";

// A screen of text beside the search screen.
struct TextScreen {
    std::string title;
    std::vector<std::string> lines; // those that are too long go on in the next line
    int top = 0;                    // scrolled by this many lines; painting keeps it within bounds
};

// How many rows the search screen has room for.
int rowsOnScreen();

// Which of the rows stands on a line of the search screen, both from 0; negative above them. There may be fewer rows.
int rowOnLine(int line);

void paintSearch(const PhoneModel& model, const PhoneStatus& status);
void paintText(TextScreen& text);

// Everything is sent again at the next paint.
void repaint();

} // namespace wideseek
