// A short key of keypad digits made ready to be looked for in numbers and keypad forms where they lie. Plain data, so
// that each thread has one of its own without making it:
//
//     if (key.isFor(typed) && key.candidates(word) != 0) {
//         return key.isFrom(0, text);
//     }
#pragma once

#include "host/text/Words.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace host::text {

class KeypadKey {
public:
    // From word to word of a text: two bytes may begin at all but the last byte of one.
    static constexpr std::size_t stride = wordSize - 1;

    // Makes key ready, which isKeypadKey (Key.h). Of one that is too long, nothing is kept: this is then for no key.
    void set(std::string_view key);

    // The key that this is for. Not when there is none.
    std::string_view key() const { return {m_key.data(), m_size}; }

    // Whether this has been made ready for key.
    bool isFor(std::string_view key) const {
        if (key.size() != m_size) {
            return false;
        }
        return m_size < wordSize ? loadFew(key.data(), m_size) == m_start
                                 : load(key.data()) == m_start && load(key.data() + m_size - wordSize) == m_end;
    }

    // The high bit of every byte of word at which the key's last two bytes may stand, and of every byte that is not
    // ASCII. One byte alone would be found too often in vain, so both are looked for at once. They are the last two
    // because all rows that are narrowed hold the key's beginning already.
    Word candidates(Word word) const {
        const Word difference = (word ^ m_beforeLast) | ((word >> m_toLast) ^ m_last);
        return (~(difference + lowBits) | word) & highBits;
    }

    // Whether the key occurs in text, its last two bytes at `from` or behind. Where text is not ASCII, only what it
    // folds to can tell that it does not.
    bool isFrom(std::size_t from, std::string_view text) const;

private:
    static constexpr std::size_t longest = 2 * wordSize;

    bool isAt(std::size_t at, std::string_view text) const;

    std::array<char, longest> m_key{};
    std::size_t m_size = std::string_view::npos; // npos: there is none
    Word m_start = 0;                            // its first eight bytes, zero behind its end
    Word m_startMask = 0;                        // which of those there are
    Word m_end = 0;                              // its last eight bytes, when it has as many
    Word m_beforeLast = 0;                       // its last two bytes, each eight times; a single byte is both
    Word m_last = 0;
    unsigned m_toLast = 0; // how many bits lie between the two
};

} // namespace host::text
