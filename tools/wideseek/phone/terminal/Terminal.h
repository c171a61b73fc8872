// The terminal while a full screen is shown on it: set up, read key by key, given back as it was.
//
// One thread. There is one at a time.
#pragma once

#include "tools/wideseek/phone/terminal/TerminalKeys.h"

#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace wideseek {

struct Input {
    Key key{};
    std::string text;
    int line = 0; // of the screen, from 0
};

class Terminal {
public:
    // Takes standard input and output. Throws std::runtime_error with what to do when they are no terminal, when the
    // terminal's type is not known or cannot place a cursor, or when there is no UTF-8.
    Terminal();

    // Gives the terminal back.
    ~Terminal();

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // Appends everything that has been typed to inputs, without waiting for more. What is pasted comes as characters
    // alone, line ends and tabs as blanks, from a terminal that marks it (bracketed paste).
    void read(std::deque<Input>& inputs);

    // Hands text to the terminal for its clipboard (xterm's OSC 52). Terminals may be set up not to take it.
    void copy(std::string_view text);

    // Stops the process group as Ctrl-Z does and, once it is continued, takes the terminal again.
    void suspend();

private:
    struct Handles;
    using Clock = std::chrono::steady_clock;

    void take(int code, std::deque<Input>& inputs);
    void takePasted(int code, std::deque<Input>& inputs);
    void takeByte(int code, std::deque<Input>& inputs);
    void takeEscape(std::deque<Input>& inputs);
    void takeMouse(std::deque<Input>& inputs);
    bool isSecondClick(int line);

    std::unique_ptr<Handles> m_handles;
    std::string m_character; // the bytes so far of one that has not come whole
    bool m_pasting = false;
    Clock::time_point m_pasted; // when the latest part of a paste came
    Clock::time_point m_clicked;
    int m_clickedLine = -1;
};

} // namespace wideseek
