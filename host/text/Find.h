// Finds a short key in many bytes, and a key in one field again and again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host::text {

// Where needle (not empty) first occurs in hay at or behind from; npos when it does not. Exact for all bytes. Looks at
// eight places at a time, which for keys of a few characters beats the C library's memmem.
std::size_t findBytes(std::string_view hay, std::string_view needle, std::size_t from);

// Tests field after field for one key. The key is folded once; a field of ASCII is compared where it lies, any other is
// folded into a buffer that is kept. One thread at a time.
class FieldMatcher {
public:
    void setKey(std::string_view key);

    // The key as set; empty at first.
    const std::string& key() const { return m_key; }

    // Whether the folded key occurs in the folded text. An empty key occurs in everything.
    bool isIn(std::string_view text) {
        const Found found = m_isAscii ? findInAscii(text) : Found::foldFirst;
        return found == Found::foldFirst ? isInFolded(text) : found == Found::yes;
    }

    // The same, with neither letter nor digit beside it.
    bool isWordIn(std::string_view text);

private:
    enum class Found { yes, no, foldFirst };

    Found findInAscii(std::string_view text) const;
    bool isInFolded(std::string_view text);
    bool isAt(std::string_view text, std::size_t at) const;
    const std::string& fold(std::string_view text);

    using Word = std::uint64_t; // eight bytes, the first of them lowest

    std::string m_key;
    std::string m_folded;
    bool m_isAscii = false; // m_folded is, and not empty; then the following stand for it:
    Word m_start = 0;      // its first eight bytes, zero behind its end
    Word m_startMask = 0;  // which of them there are
    Word m_startCase = 0;  // the bits that a letter's case makes of no account
    Word m_first = 0;      // its first byte, eight times
    Word m_firstCase = 0;
    Word m_second = 0; // its second byte
    Word m_secondCase = 0;
    Word m_secondKnown = 0; // the bytes of a word behind which the second byte can be looked for
    std::string m_buffer;
};

} // namespace host::text
