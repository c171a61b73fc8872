// The accounts of the tracking allocation (platform/TrackedMemory.h): what is outstanding, and failures on demand.
//
// They belong to the process, not to a phone, so that what outlives a phone is seen. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct TrackedBlocks {
    std::string file;
    int line = 0;
    std::size_t blocks = 0;
};

// Blocks that have not been given back, counted by who asked for them, in order of file and line.
std::vector<TrackedBlocks> trackedBlocks();

// The nth allocation from now on (1: the next) gives null, once; 0 ends that.
void failTrackedAllocation(std::size_t nth);

} // namespace host
