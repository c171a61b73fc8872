// What the phone's screens have in common: the smallest window, the line of keys, and sending what was painted.
//
// A Terminal exists. One thread.
#pragma once

#include <string>
#include <vector>

namespace wideseek {

// A key and what it does.
struct Label {
    const char* key;
    std::string meaning;
    bool always = true; // else where there is room
};

// Paints them on the last line.
void paintLabels(const std::vector<Label>& labels);

// True when the window is too small for a phone; it then says so.
bool paintTooSmall();

// Sends what differs from what the terminal shows.
void sendPainted();

// Everything is sent again at the next paint.
void repaint();

} // namespace wideseek
