// What a shell loads to complete the tool's commands, options, files and folders.
#pragma once

#include "tools/manual/CommandTable.h"

#include <string>

namespace wideseek::manual {

// For bash 4.4 or newer, with or without the bash-completion package.
std::string bashCompletion(const Command& tool);

// For zsh's completion system: a function file for a folder of its fpath.
std::string zshCompletion(const Command& tool);

} // namespace wideseek::manual
