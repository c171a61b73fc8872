// Output for scripts: one JSON object on a line of its own.
#pragma once

#include <nlohmann/json.hpp>

#include <ostream>

namespace wideseek {

using Json = nlohmann::ordered_json;

// Bytes that are not UTF-8 become U+FFFD.
inline void printJsonLine(std::ostream& out, const Json& object) {
    out << object.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace wideseek
