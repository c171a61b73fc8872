#include "tools/wideseek/phone/terminal/Terminal.h"

#include "host/text/Utf8.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/terminal/Curses.h"
#include "tools/wideseek/phone/terminal/TerminalType.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace wideseek {

namespace {

// How long an escape sequence may take to come whole; a lone Escape waits for as long.
constexpr int escapeDelay = 25;

// How many keys are read before the screen is painted again; more than a paste is likely to have.
constexpr std::size_t mostAtOnce = 1U << 18U;

// A paste whose end got lost is over when nothing has come for so long: keys are to be keys again.
constexpr auto longestPastePause = std::chrono::seconds(1);

constexpr auto doubleClickTime = std::chrono::milliseconds(400);

constexpr int escapeByte = 0x1B;

// DEC private mode 2004, which terminals that do not know it pass over.
constexpr std::string_view markPastes = "\033[?2004h";
constexpr std::string_view markNoPastes = "\033[?2004l";

// Past ncurses, which knows nothing of it.
void send(std::string_view bytes) {
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

// Each foreground on the terminal's own background, as a pair of the foreground's number. Without colours, or where
// nobody wants them (https://no-color.org), these pairs show none.
void startColours() {
    const char* unwanted = std::getenv("NO_COLOR");
    if (has_colors() == FALSE || (unwanted != nullptr && *unwanted != '\0')) {
        return;
    }
    start_color();
    use_default_colors();
    for (short foreground = COLOR_RED; foreground < COLOR_WHITE; ++foreground) {
        init_pair(foreground, foreground, -1);
    }
}

// RFC 4648, section 4.
std::string base64(std::string_view bytes) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = group << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= bytes.size() ? digits[group >> (18 - 6 * i) & 0x3FU] : '=';
        }
    }
    return text;
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
    const std::string type = usableTerminalType();
    chooseUtf8Locale();
    m_handles->screen = newterm(type.c_str(), stdout, stdin);
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
    startColours();
    typeahead(-1); // paint also while keys are waiting
    keypad(m_handles->input, TRUE);
    nodelay(m_handles->input, TRUE);
    defineSequences();
    mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
    mouseinterval(0); // ncurses would wait for the second click
    send(markPastes);
}

Terminal::~Terminal() {
    endwin();
    send(markNoPastes);
    delwin(m_handles->input);
    delscreen(m_handles->screen);
}

void Terminal::read(std::deque<Input>& inputs) {
    m_pasting = m_pasting && Clock::now() < m_pasted + longestPastePause;
    for (std::size_t count = 0; count < mostAtOnce; ++count) {
        const int code = wgetch(m_handles->input);
        if (code == ERR) {
            break;
        }
        if (m_pasting) {
            takePasted(code, inputs);
        } else {
            take(code, inputs);
        }
    }
    if (hasGone()) {
        inputs.clear();
        inputs.push_back({Key::leave, {}});
    }
}

void Terminal::take(int code, std::deque<Input>& inputs) {
    if (code == escapeByte) {
        takeEscape(inputs);
    } else if (code == KEY_MOUSE) {
        takeMouse(inputs);
    } else if (code == OwnCode::pasteBegin) {
        m_pasting = true;
        m_pasted = Clock::now();
    } else if (const auto character = keypadCharacter(code)) {
        takeByte(*character, inputs);
    } else if (const auto key = keyOf(code)) {
        m_character.clear();
        if (*key == Key::leave) {
            inputs.clear(); // whoever leaves waits for nothing that was typed before
        }
        inputs.push_back({*key, {}});
    } else {
        takeByte(code, inputs);
    }
}

// Nothing in it is a command: a pasted line end dials nobody.
void Terminal::takePasted(int code, std::deque<Input>& inputs) {
    m_pasted = Clock::now();
    if (code == OwnCode::pasteEnd) {
        m_pasting = false;
    } else if (code == KEY_RESIZE) {
        inputs.push_back({Key::resize, {}});
    } else if (code == '\t' || code == '\r' || code == '\n') {
        takeByte(' ', inputs);
    } else {
        takeByte(code, inputs);
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
void Terminal::takeByte(int code, std::deque<Input>& inputs) {
    if (code > 0xFF) {
        return;
    }
    const auto byte = static_cast<char>(code);
    if (!host::text::isContinuation(byte)) {
        m_character.clear();
    } else if (m_character.empty()) {
        return;
    }
    m_character += byte;
    const std::size_t size = host::text::sizeFrom(m_character.front());
    if (m_character.size() >= size) {
        if (size > 0 && printable(m_character) == m_character) {
            inputs.push_back({Key::character, m_character});
        }
        m_character.clear();
    }
}

// ncurses reports events that come together once, and hands them out from the last one to the first.
void Terminal::takeMouse(std::deque<Input>& inputs) {
    std::vector<MEVENT> events;
    for (MEVENT event = {}; getmouse(&event) == OK;) {
        events.push_back(event);
    }
    for (auto event = events.rbegin(); event != events.rend(); ++event) {
        if ((event->bstate & (BUTTON4_PRESSED | BUTTON5_PRESSED)) != 0) {
            inputs.push_back({(event->bstate & BUTTON4_PRESSED) != 0 ? Key::wheelUp : Key::wheelDown, {}});
        } else if ((event->bstate & BUTTON1_PRESSED) != 0) {
            inputs.push_back({isSecondClick(event->y) ? Key::doubleClick : Key::click, {}, event->y});
        }
    }
}

bool Terminal::isSecondClick(int line) {
    const auto now = Clock::now();
    const bool second = line == m_clickedLine && now < m_clicked + doubleClickTime;
    m_clicked = now;
    m_clickedLine = second ? -1 : line;
    return second;
}

// GNU screen takes no such command for itself, and hands on to the terminal what stands in a string of this kind; what
// runs inside it, or it inside of, takes the command itself and drops the string.
void Terminal::copy(std::string_view text) {
    const std::string command = "\033]52;c;" + base64(text) + "\a";
    send(command);
    if (std::getenv("STY") != nullptr) {
        send("\033P" + command + "\033\\");
    }
}

void Terminal::suspend() {
    endwin();
    send(markNoPastes);
    struct sigaction stop = {};
    struct sigaction former = {};
    stop.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &stop, &former);
    raise(SIGTSTP);
    sigaction(SIGTSTP, &former, nullptr);
    send(markPastes);
    raise(SIGWINCH); // the window may have changed meanwhile
}

} // namespace wideseek
