#include "tools/wideseek/phone/screens/RowColumns.h"

#include <algorithm>

namespace wideseek {

namespace {

// From this width on the columns stand further apart, and what a source adds has a share of its own.
constexpr int roomyWidth = 60;
constexpr int wideWidth = 120;

constexpr int nameStep = 4;
constexpr int numberStep = 2;

// Most names and numbers are no wider, so that few rows make their columns grow.
constexpr int usualName = 20;
constexpr int usualNumber = 14;

// What each column gets before any gets more; enough for a number of fifteen digits, and for most labels of sources.
constexpr int numberShare = 16;
constexpr int sourceShare = 12;

// A narrower column of additions shows nothing of use.
constexpr int leastExtra = 4;

int stepped(int width, int step) {
    return (width + step - 1) / step * step;
}

int gapOf(int screen) {
    return screen < roomyWidth ? 1 : screen < wideWidth ? 2 : 4;
}

} // namespace

void RowColumns::fit(int screen, const Widths& needed, bool recent) {
    if (recent != m_recent) {
        m_wanted = {};
        m_recent = recent;
    }
    grow(needed);

    const int gap = gapOf(screen);
    const bool hasSource = screen >= widthForSource && m_wanted.source > 0;
    int left = screen - firstColumn - (hasSource ? 3 : 2) * gap;
    Widths given;
    const auto widen = [&](int Widths::*column, int width) {
        const int more = std::clamp(width - given.*column, 0, left);
        given.*column += more;
        left -= more;
    };
    const auto give = [&](int Widths::*column, int most) { widen(column, std::min(m_wanted.*column, most)); };
    give(&Widths::number, numberShare);
    give(&Widths::name, screen * 2 / 5);
    if (screen >= roomyWidth) {
        give(&Widths::extra, screen / 5);
    }
    if (hasSource) {
        give(&Widths::source, sourceShare);
    }
    give(&Widths::number, screen / 4);
    give(&Widths::name, screen);
    give(&Widths::extra, screen);
    if (hasSource) {
        give(&Widths::source, screen);
    }
    widen(&Widths::number, std::max(usualNumber, stepped(given.number, numberStep)));
    widen(&Widths::name, std::max(usualName, stepped(given.name, nameStep)));
    given.extra += left;
    if (given.extra < leastExtra) {
        given.name += given.extra + gap;
        given.extra = 0;
    }

    m_name = {firstColumn, given.name};
    m_number = {m_name.begin + given.name + gap, given.number};
    const int behind = m_number.begin + given.number + gap;
    m_source = {behind, given.source};
    m_extra = {behind + (hasSource ? given.source + gap : 0), given.extra};
}

void RowColumns::grow(const Widths& needed) {
    const auto raise = [](int& wanted, int width) { wanted = std::max(wanted, width); };
    raise(m_wanted.name, needed.name);
    raise(m_wanted.number, needed.number);
    raise(m_wanted.source, needed.source);
    raise(m_wanted.extra, needed.extra);
}

} // namespace wideseek
