// Reads buddies from a JSON array (PresenceFile.h says what stands in it) one by one, so that a large file is
// never in memory as a whole, be it as text or as a tree of values.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/files/TextWindow.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

struct BuddyFile {
    std::vector<std::string> problems; // "file:entry N: reason", of entries that are left out or doubtful
    std::string error;                 // why there are no buddies at all; else empty
};

// Hands each buddy of the text, the file called `file`, to take, in the file's order. take gives why it is to be left
// out as well; nothing when it is not. Any thread.
BuddyFile readBuddies(TextWindow text, const std::string& file,
                      const std::function<std::string(const PresenceInfo& buddy)>& take);

} // namespace host
