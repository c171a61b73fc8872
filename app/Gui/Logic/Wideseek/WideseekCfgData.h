// The list of contact sources as it is handed to callers and to the search: ids and labels in priority order. Plain
// data.
#pragma once

#include <list>
#include <string>

namespace NS_WS {

// One configured source.
struct WideseekCfgItemData {
    std::string strIdName;      // source id, such as "local_directory_search"
    std::string strDisplayName; // its label for people; the search does not use it
};

// The enabled sources in the order in which they are asked and listed.
struct WideseekCfgListData {
    std::list<WideseekCfgItemData> listItem;
};

} // namespace NS_WS
