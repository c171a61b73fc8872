#include "tools/wideseek/phone/terminal/TerminalType.h"

#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/terminal/Curses.h"

#include <langinfo.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace wideseek {

namespace {

enum class Ability { unknown, tooSimple, usable };

Ability abilityOf(const std::string& type) {
    int status = 0;
    if (type.empty() || setupterm(type.c_str(), STDOUT_FILENO, &status) != OK) {
        return Ability::unknown;
    }
    const char* placeCursor = tigetstr("cup");
    const bool canPlaceCursor = placeCursor && placeCursor != reinterpret_cast<const char*>(-1);
    del_curterm(cur_term);
    return canPlaceCursor ? Ability::usable : Ability::tooSimple;
}

// Terminals that understand what xterm does, and whose own description comes with a package or with themselves.
bool isLikeXterm(std::string_view type) {
    constexpr std::array names = {"alacritty", "contour", "foot", "ghostty", "iterm2",  "kitty", "konsole",
                                  "mlterm",    "rio",     "st",   "vte",     "wezterm", "xterm"};
    return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
        return type.starts_with(name) && (type.size() == name.size() || type[name.size()] == '-');
    });
}

// The known type that comes nearest to one that is not known: its name without the end, part by part.
std::string nearestType(std::string type) {
    if (isLikeXterm(type)) {
        return "xterm-256color";
    }
    while (abilityOf(type) == Ability::unknown) {
        const std::size_t end = type.find_last_of("-.+");
        if (end == std::string::npos) {
            return {};
        }
        type.resize(end);
    }
    return type;
}

} // namespace

void chooseUtf8Locale() {
    for (const char* name : {"", "C.UTF-8", "en_US.UTF-8"}) {
        if (std::setlocale(LC_CTYPE, name) && std::string_view(nl_langinfo(CODESET)) == "UTF-8") {
            return;
        }
    }
    throw std::runtime_error("this system has no UTF-8 locale to show names in; install C.UTF-8");
}

std::string usableTerminalType() {
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO)) {
        throw std::runtime_error(
            "the phone needs a terminal to type on; \"wideseek demo\" and \"wideseek type\" do not");
    }
    const char* variable = std::getenv("TERM");
    const std::string named = variable ? variable : "";
    std::string type = abilityOf(named) == Ability::unknown ? nearestType(named) : named;
    const std::string hint = "; set TERM to your terminal's type, such as TERM=xterm-256color, or TERM=linux on a "
                             "console, or use \"wideseek type\", which needs no screen";
    switch (abilityOf(type)) {
    case Ability::unknown:
        throw std::runtime_error("the terminal type \"" + printable(named) +
                                 "\" (TERM) is not known here; the package ncurses-term knows many more" + hint);
    case Ability::tooSimple:
        throw std::runtime_error("a terminal of type \"" + printable(named) + "\" (TERM) shows no full screen" + hint);
    case Ability::usable:
        break;
    }
    return type;
}

} // namespace wideseek
