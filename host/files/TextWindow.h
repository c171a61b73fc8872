// A text that is read once from its beginning to its end, as its reader sees it: the bytes from a position on, as far
// as they are held. Of a text in memory all are; of a file it is a piece that moves along, so that no file is in
// memory as a whole.
//
//     TextWindow text(file); // a ByteSource, or the bytes themselves
//     for (std::size_t at = 0; !text.from(at).empty();) {
//         at += use(text.from(at));
//     }
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace host {

// Bytes that come one piece after the other.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Puts at most size (more than 0) of the next bytes there and gives how many these are; 0 at the end, and when it
    // cannot be read any further.
    virtual std::size_t read(char* to, std::size_t size) = 0;

protected:
    ByteSource() = default;
    ByteSource(ByteSource&&) = default;
    ByteSource& operator=(ByteSource&&) = default;
};

class TextWindow {
public:
    static constexpr std::size_t usualPiece = 128UL * 1024; // bytes

    // The text must outlive the window.
    TextWindow(std::string_view text) : m_held(text) {}   // NOLINT(google-explicit-constructor): a reader takes either
    TextWindow(const std::string& text) : m_held(text) {} // NOLINT(google-explicit-constructor)

    // Reads the source, which must outlive the window, in pieces of this size, or larger ones where more is asked for.
    explicit TextWindow(ByteSource& source, std::size_t piece = usualPiece) : m_source(&source), m_piece(piece) {}

    // What is held from this position on: at least so many bytes, unless the text ends before. Positions go up: what
    // stood before one that was asked for is gone. Nor may one lie behind all that was given. Valid until the next
    // call that asks for more than is held. Throws std::bad_alloc.
    std::string_view from(std::size_t position, std::size_t least = 1) {
        const std::size_t at = position - m_begin;
        return m_held.size() - at >= least ? m_held.substr(at) : read(position, least);
    }

    // All of the text, which is in memory then. Before anything else is asked for.
    std::string_view whole();

    // Takes bytes away from the front, of those held, so that the text begins behind them. Before a position other than
    // 0 is asked for.
    void dropFront(std::size_t bytes) { m_held.remove_prefix(bytes); }

private:
    std::string_view read(std::size_t position, std::size_t least);
    void makeRoom(std::size_t least);

    ByteSource* m_source = nullptr; // null: all is held that there is
    std::size_t m_piece = 0;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    std::string_view m_held;
    std::size_t m_begin = 0; // the position of its first byte
};

} // namespace host
