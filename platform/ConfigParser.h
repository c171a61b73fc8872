// The phone's configuration parser.
#pragma once

// The integer value of a key of the phone's configuration as it stands now; -1 for a key that is absent or whose value
// is no integer. Any thread.
int configParser_GetConfigInt(const char* pszKey);
