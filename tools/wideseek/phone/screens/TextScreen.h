// A screen of text beside the search screen, which may have lines to choose among.
//
// A Terminal exists. One thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace wideseek {

struct TextScreen {
    std::string title;
    std::vector<std::string> lines; // those that are too long go on in the next line
    int top = 0;                    // scrolled by this many lines; painting keeps it within bounds

    std::size_t firstChoice = 0; // the lines that one chooses among: from this one on,
    std::size_t choices = 0;     // so many
    std::size_t chosen = 0;      // which of them
    std::string action{};        // what Enter does with it; none without choices
    bool revealing = false;      // painting scrolls to the chosen line, once
};

void paintText(TextScreen& text);

} // namespace wideseek
