#include "tools/wideseek/Terminal.h"

#include "tools/wideseek/Curses.h"
#include "tools/wideseek/Text.h"

#include <langinfo.h>
#include <poll.h>
#include <term.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace wideseek {

namespace {

// How long an escape sequence may take to come whole; a lone Escape waits for as long.
constexpr int escapeDelay = 25;

constexpr int control(char letter) {
    return letter - '@';
}

constexpr int escapeByte = control('[');
constexpr int deleteByte = 0x7F;

// The screen is addressed in display columns, which only a UTF-8 locale knows.
void chooseLocale() {
    for (const char* name : {"", "C.UTF-8", "en_US.UTF-8"}) {
        if (std::setlocale(LC_CTYPE, name) && std::string_view(nl_langinfo(CODESET)) == "UTF-8") {
            return;
        }
    }
    throw std::runtime_error("this system has no UTF-8 locale to show names in; install C.UTF-8");
}

void requireTerminal() {
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO)) {
        throw std::runtime_error(
            "the phone needs a terminal to type on; \"wideseek demo\" and \"wideseek type\" do not");
    }
    const char* variable = std::getenv("TERM");
    const std::string type = variable ? variable : "";
    const std::string hint = "; set TERM to your terminal's type, such as TERM=xterm-256color, or TERM=linux on a "
                             "console, or use \"wideseek type\", which needs no screen";
    int status = 0;
    if (type.empty() || setupterm(nullptr, STDOUT_FILENO, &status) != OK) {
        throw std::runtime_error("the terminal type \"" + printable(type) + "\" (TERM) is not known here" + hint);
    }
    const char* placeCursor = tigetstr("cup");
    const bool canPlaceCursor = placeCursor && placeCursor != reinterpret_cast<const char*>(-1);
    del_curterm(cur_term);
    if (!canPlaceCursor) {
        throw std::runtime_error("a terminal of type \"" + printable(type) + "\" (TERM) shows no full screen" + hint);
    }
}

std::optional<Key> keyOf(int code) {
    switch (code) {
    case KEY_BACKSPACE:
    case deleteByte:
    case control('H'):
        return Key::erase;
    case KEY_ENTER:
    case control('M'):
    case control('J'):
        return Key::enter;
    case KEY_UP:
        return Key::up;
    case KEY_DOWN:
        return Key::down;
    case KEY_PPAGE:
        return Key::pageUp;
    case KEY_NPAGE:
        return Key::pageDown;
    case KEY_HOME:
        return Key::home;
    case KEY_END:
        return Key::end;
    case KEY_F(1):
        return Key::help;
    case KEY_F(2):
        return Key::entry;
    case KEY_F(3):
    case control('I'):
        return Key::details;
    case KEY_F(10):
    case control('C'):
        return Key::leave;
    case control('Z'):
        return Key::suspend;
    case control('L'):
        return Key::redraw;
    case KEY_RESIZE:
        return Key::resize;
    default:
        return std::nullopt;
    }
}

// How many bytes the UTF-8 character has that begins with this one; 0: none does (RFC 3629, section 3).
std::size_t lengthOf(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first < 0xC2 || first > 0xF4) {
        return 0;
    }
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

bool hasGone() {
    struct pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0 && (input.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

} // namespace

struct Terminal::Handles {
    SCREEN* screen = nullptr;
    WINDOW* input = nullptr; // a pad: reading from it does not paint
};

Terminal::Terminal() : m_handles(std::make_unique<Handles>()) {
    requireTerminal();
    chooseLocale();
    m_handles->screen = newterm(nullptr, stdout, stdin);
    m_handles->input = m_handles->screen ? newpad(1, 1) : nullptr;
    if (!m_handles->input) {
        endwin();
        throw std::runtime_error("the terminal could not be set up: no memory for its screen");
    }
    if (!std::getenv("ESCDELAY")) {
        set_escdelay(escapeDelay);
    }
    raw();
    noecho();
    nonl();
    typeahead(-1); // paint also while keys are waiting
    keypad(m_handles->input, TRUE);
    nodelay(m_handles->input, TRUE);
}

Terminal::~Terminal() {
    endwin();
    delwin(m_handles->input);
    delscreen(m_handles->screen);
}

void Terminal::read(std::deque<Input>& inputs) {
    for (int code = wgetch(m_handles->input); code != ERR; code = wgetch(m_handles->input)) {
        if (code == escapeByte) {
            takeEscape(inputs);
        } else if (const auto key = keyOf(code)) {
            m_character.clear();
            inputs.push_back({*key, {}});
        } else {
            takeByte(code, inputs);
        }
    }
    if (hasGone()) {
        inputs.push_back({Key::leave, {}});
    }
}

// Escape itself, or a control sequence of a key that is not known here, which is skipped whole (ECMA-48, section 5.4).
void Terminal::takeEscape(std::deque<Input>& inputs) {
    m_character.clear();
    const int second = wgetch(m_handles->input);
    const int third = second == '[' ? wgetch(m_handles->input) : ERR;
    if (third == ERR) {
        inputs.push_back({Key::escape, {}});
        if (second != ERR) {
            ungetch(second);
        }
        return;
    }
    for (int byte = third; byte != ERR && byte < '@'; byte = wgetch(m_handles->input)) {
    }
}

// The bytes of a character may come in several reads.
void Terminal::takeByte(int byte, std::deque<Input>& inputs) {
    if (byte > 0xFF) {
        return;
    }
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0U) != 0x80U) {
        m_character.clear();
    } else if (m_character.empty()) {
        return;
    }
    m_character += static_cast<char>(value);
    const std::size_t length = lengthOf(static_cast<unsigned char>(m_character.front()));
    if (m_character.size() >= length) {
        if (length > 0 && printable(m_character) == m_character) {
            inputs.push_back({Key::character, m_character});
        }
        m_character.clear();
    }
}

void Terminal::suspend() {
    endwin();
    struct sigaction stop = {};
    struct sigaction former = {};
    stop.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &stop, &former);
    raise(SIGTSTP);
    sigaction(SIGTSTP, &former, nullptr);
    raise(SIGWINCH); // the window may have changed meanwhile
}

} // namespace wideseek
