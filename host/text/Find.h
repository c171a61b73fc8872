// Finds a key in many bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace host::text {

// Where needle (not empty) first occurs in hay at or behind from; npos when it does not. Exact for all bytes. Keys of
// a few characters are looked for at eight places at a time, which beats the C library's memmem; longer ones by memmem.
std::size_t findBytes(std::string_view hay, std::string_view needle, std::size_t from);

} // namespace host::text
