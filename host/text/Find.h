// Finds a short key in many bytes, and a key in one field again and again.
#pragma once

#include <cstddef>
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
    bool isIn(std::string_view text);

    // The same, with neither letter nor digit beside it.
    bool isWordIn(std::string_view text);

private:
    enum class Found { yes, no, foldFirst };

    Found findInAscii(std::string_view text) const;
    bool isAt(std::string_view text, std::size_t at) const;
    const std::string& fold(std::string_view text);

    std::string m_key;
    std::string m_folded;
    bool m_isAscii = true; // m_folded is
    std::string m_buffer;
};

} // namespace host::text
