#include "tools/wideseek/phone/EnabledSources.h"

#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "host/sources/SourceNames.h"

#include <algorithm>
#include <iterator>

namespace wideseek {

namespace {

struct KnownId {
    std::string_view id;
    std::string_view name;
};

constexpr KnownId knownIds[] = {
    {"local_directory_search", host::sourceName::localDirectory},
    {"remote_directory_search", host::sourceName::remoteDirectory},
    {"calllog_search", host::sourceName::callLog},
    {"BroadSoft_directory_search", host::sourceName::broadSoftDirectory},
    {"Network_directory_search", host::sourceName::broadSoftDirectory},
    {"ldap_search", host::sourceName::ldap},
    {"BroadSoft_UC_search", host::sourceName::presence},
};

} // namespace

std::string_view sourceNameOf(std::string_view id) {
    const auto known =
        std::find_if(std::begin(knownIds), std::end(knownIds), [&](const KnownId& each) { return each.id == id; });
    return known == std::end(knownIds) ? std::string_view() : known->name;
}

std::vector<EnabledSource> enabledSources() {
    NS_WS::WideseekCfgListData list;
    NS_WS::CWideseekController* controller = NS_WS::CWideseekController::GetInstance();
    if (controller) {
        controller->GetEnableCfgList(&list);
    }
    std::vector<EnabledSource> sources;
    for (const NS_WS::WideseekCfgItemData& item : list.listItem) {
        const std::string_view name = sourceNameOf(item.strIdName);
        const auto before = std::count_if(sources.begin(), sources.end(),
                                          [&](const EnabledSource& other) { return other.name == name; });
        sources.push_back({item.strDisplayName.empty() ? item.strIdName : item.strDisplayName, name,
                           static_cast<std::size_t>(before)});
    }
    return sources;
}

} // namespace wideseek
