// Made-up contacts for the benchmarks: the same ones at every run, with names of several scripts' letters, one to three
// numbers each, and some accents.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <cstddef>
#include <vector>

namespace bench {

std::vector<DirectorySearchData> makePeople(std::size_t count);

} // namespace bench
