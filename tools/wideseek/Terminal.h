// The terminal while a full screen is shown on it: set up, read key by key, given back as it was.
//
// One thread. There is one at a time.
#pragma once

#include <deque>
#include <memory>
#include <string>

namespace wideseek {

enum class Key {
    character, // Input::text holds it, UTF-8
    erase,
    escape,
    enter,
    up,
    down,
    pageUp,
    pageDown,
    home,
    end,
    help,    // F1
    entry,   // F2
    details, // F3 or Tab
    leave,   // F10 or Ctrl-C, or the terminal has gone away
    suspend, // Ctrl-Z
    redraw,  // Ctrl-L
    resize,
};

struct Input {
    Key key{};
    std::string text;
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

    // Appends everything that has been typed to inputs, without waiting for more.
    void read(std::deque<Input>& inputs);

    // Stops the process group as Ctrl-Z does and, once it is continued, takes the terminal again.
    void suspend();

private:
    struct Handles;

    void takeByte(int byte, std::deque<Input>& inputs);
    void takeEscape(std::deque<Input>& inputs);

    std::unique_ptr<Handles> m_handles;
    std::string m_character; // the bytes so far of one that has not come whole
};

} // namespace wideseek
