// How wide the columns of the rows are, from what stands in them and the width of the screen.
//
//     RowColumns columns;
//     columns.fit(80, {.name = 19, .number = 13, .source = 8, .extra = 21}, key);
//     put(columns.name().begin, columns.name().width, ...);
//
// A name and a number are as wide as the rows need, then what the source adds; the source itself has a column on a
// screen that is wide enough. Where there is too little room each of them keeps a share of it. So that nothing jumps
// while one types or scrolls, the columns only grow until the key is cleared, in steps where there is room for them.
// Pure; one thread.
#pragma once

namespace wideseek {

class RowColumns {
public:
    // In columns of the screen.
    struct Widths {
        int name = 0;
        int number = 0;
        int source = 0;
        int extra = 0;
    };

    struct Column {
        int begin = 0;
        int width = 0; // 0: there is no room for it, or nothing in it
    };

    static constexpr int firstColumn = 2; // behind the cursor's sign

    // From this width on there is a column for the source.
    static constexpr int widthForSource = 76;

    // Fits the columns to a screen of this width (at least 40) and to the widest of each kind among the rows that are
    // shown. recent: the rows are recent calls; whenever that changes, the columns begin anew.
    void fit(int screen, const Widths& needed, bool recent);

    Column name() const { return m_name; }
    Column number() const { return m_number; }
    Column source() const { return m_source; }
    Column extra() const { return m_extra; }

private:
    void grow(const Widths& needed);

    Widths m_wanted;
    bool m_recent = false;

    Column m_name;
    Column m_number;
    Column m_source;
    Column m_extra;
};

} // namespace wideseek
