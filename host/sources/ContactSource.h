// What stands behind the phone's directory functions: sources of contacts that answer a key at once.
//
// The tool puts contact files here (FileDirectory.h), tests put scripted answers here. Both are asked through this one
// interface, on the search thread as a rule, but any thread may ask.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <string>

namespace host {

// The directory functions that have a source behind them.
enum class Source { localDirectory, callLog, remoteDirectory, broadSoftDirectory };

class ContactSource {
public:
    virtual ~ContactSource() = default;

    // Appends the contacts that match key (converted) to hits. An empty key, that of a search box that has been
    // cleared, need find nothing, as nobody uses what is found for it. False: the source failed; error then says why,
    // for people. Hits may have been appended all the same. With true it may say what
    // is to be known of the answer, such as how old it is.
    virtual bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) = 0;
};

} // namespace host
