// A screen of text beside the search screen, which may have lines to choose among.
//
// A Terminal exists. One thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

struct TextLine {
    enum class Look { plain, heading, problem };

    std::string text;
    Look look = Look::plain;
    int indent = 0; // the column at which a line that is too long goes on
};

struct TextScreen {
    std::string title;
    std::vector<TextLine> lines;
    int top = 0; // scrolled by this many lines; painting keeps it within bounds

    std::size_t firstChoice = 0; // the lines that one chooses among: from this one on,
    std::size_t choices = 0;     // so many
    std::size_t chosen = 0;      // which of them
    std::string action{};        // what Enter does with it; none without choices
    bool revealing = false;      // painting scrolls to the chosen line, once

    // ---- as it was painted last ----

    int room = 1;                                      // how many lines there are for text
    std::vector<std::optional<std::size_t>> onScreen{}; // which choice stands on a line of the screen
};

void paintText(TextScreen& text);

// The choice on this line of the screen, from 0.
std::optional<std::size_t> choiceOn(const TextScreen& text, int line);

} // namespace wideseek
