// Where the phone's files really are.
#pragma once

#include <string>

// The path under which the phone's file strPath (absolute, such as "/config/data/x.xml") can be opened. On a phone that
// is strPath itself; elsewhere it lies below the folder that stands in for the phone's root. Empty for what is there
// and is no regular file (a pipe, a device, a folder), which a reader might never come to the end of; where nothing is
// there, the path at which a file would be. Throws std::bad_alloc without memory. Any thread.
std::string SystemFile_GetRealPath(const std::string& strPath);
