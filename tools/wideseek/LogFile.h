// The phone's log on a workstation: a file or the standard error output.
#pragma once

#include "host/Phone.h"

#include <string>

namespace wideseek {

// Writes each line with the time since this call, its level and its module. Throws std::runtime_error when the file
// cannot be written.
host::LogSink openLog(const std::string& file);

} // namespace wideseek
