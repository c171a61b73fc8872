// Lines from a file descriptor, taken as they come, without waiting for more.
//
//     LineReader input(STDIN_FILENO);
//     while (!input.hasEnded()) { // after poll has found something to read
//         for (const Line& line : input.read()) { ... }
//     }
//
// One thread. What it holds is bounded: of a line that is too long, the bytes are dropped as they come.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

struct Line {
    std::string text;     // without its end; empty when it is too long
    bool tooLong = false; // longer than LineReader::longest
};

class LineReader {
public:
    static constexpr std::size_t longest = 65536; // bytes

    // The descriptor stays the caller's.
    explicit LineReader(int descriptor) : m_descriptor(descriptor) {}

    // Reads once, which waits where there is nothing to read, and gives the lines that are complete now; at the end of
    // input also what stands behind the last line's end.
    std::vector<Line> read();

    // No more lines will come.
    bool hasEnded() const { return m_ended; }

    // Why reading failed, which ended it (errno); 0: it did not.
    int error() const { return m_error; }

private:
    void append(std::string_view bytes);

    const int m_descriptor;
    Line m_begun; // the line whose end has not come
    bool m_hasBegun = false;
    bool m_ended = false;
    int m_error = 0;
};

} // namespace wideseek
