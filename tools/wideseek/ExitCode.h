// What the tool ends with.
#pragma once

namespace wideseek::exitCode {

constexpr int success = 0;
constexpr int failure = 1;
constexpr int usage = 2;

} // namespace wideseek::exitCode
