// What answers Directory_SearchCallLogRecentOutCall: the phone's list of outgoing calls. Any thread may ask.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <string>

namespace host {

class RecentCalls {
public:
    virtual ~RecentCalls() = default;

    // As the platform's function of that name, with the reason of a failure for people.
    virtual int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) = 0;
};

} // namespace host
