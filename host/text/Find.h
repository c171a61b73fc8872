// Finds a short key in many bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace host::text {

// Where needle (not empty) first occurs in hay at or behind from; npos when it does not. Exact for all bytes. Looks at
// eight places at a time, which for keys of a few characters beats the C library's memmem.
std::size_t findBytes(std::string_view hay, std::string_view needle, std::size_t from);

} // namespace host::text
