// Where the phone's files really are.
#pragma once

#include <string>

// The path under which the phone's file strPath (absolute, such as "/config/data/x.xml") can be opened. On a phone that
// is strPath itself; elsewhere it lies below the folder that stands in for the phone's root. Any thread.
std::string SystemFile_GetRealPath(const std::string& strPath);
