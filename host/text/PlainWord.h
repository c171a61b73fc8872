// A word of a key, of ASCII as most are, looked for in names where they lie, past what counts for nothing in them.
#pragma once

#include "host/text/Words.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace host::text {

class PlainWord {
public:
    // Whether a word in its compact form (NameForm.h), which is not empty, is of ASCII and short enough that looking
    // for it costs the same for each byte of a name.
    static bool canBe(std::string_view word);

    // canBe(word).
    explicit PlainWord(std::string word);

    // Whether the word stands in what is ASCII of name. Where name is not ASCII, only its forms can tell that it does
    // not.
    bool isIn(std::string_view name) const;

private:
    // From word to word of a name: two bytes may begin at all but the last byte of one.
    static constexpr std::size_t stride = wordSize - 1;

    // With these set, the two cases of a letter are the same byte, and so are some bytes that are no letters.
    static constexpr Word anyCase = everyByte('a' - 'A');

    // The high bit of every byte of bytes at which the word's last byte may stand next, and of bytes that are not
    // ASCII: ahead of the last byte stands the one before it, or something that may count for nothing.
    Word candidates(Word bytes) const {
        const Word letters = bytes | anyCase;
        const Word isLast = ~(((letters >> m_toLast) ^ m_last) + lowBits);
        const Word isBeforeLast = ~((letters ^ m_beforeLast) + lowBits);
        const Word isLetter = (letters + everyByte(0x80 - 'a')) & ~(letters + everyByte(0x80 - 'z' - 1));
        return isLast & (isBeforeLast | ~isLetter) & highBits;
    }

    bool endsAt(std::size_t place, std::string_view name) const;

    std::string m_word;
    Word m_beforeLast = 0; // its last two bytes with anyCase, each eight times; a single byte is both
    Word m_last = 0;
    unsigned m_toLast = 0; // how many bits lie between the two
};

} // namespace host::text
