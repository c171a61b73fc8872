// What the fuzz targets share.
#pragma once

#include "tests/support/SteppedPhone.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace fuzz {

// Ends the process, and so shows the input, unless this holds.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

} // namespace fuzz
