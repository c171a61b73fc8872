// Output for scripts: one JSON object on a line of its own.
#pragma once

#include <nlohmann/json.hpp>

#include <ostream>

namespace wideseek {

using Json = nlohmann::ordered_json;

// Bytes that are not UTF-8 become U+FFFD. What a terminal would obey is written as \u and four digits (RFC 8259,
// section 7), as scripts are tried out on terminals.
void printJsonLine(std::ostream& out, const Json& object);

} // namespace wideseek
