// What is worth telling about the elements of a source list, given what a phone makes of each.
#pragma once

#include "tools/wideseek/check/SourceListElements.h"
#include "tools/wideseek/check/SourceListReport.h"

#include <vector>

namespace wideseek {

// Everything there is to tell, in the order of the file. elements are all those of the file, in its order.
std::vector<Finding> findingsOf(const SourceListFile& file, const std::vector<SourceElement>& elements);

} // namespace wideseek
