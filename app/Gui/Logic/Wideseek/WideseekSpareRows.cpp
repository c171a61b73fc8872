#include "app/Gui/Logic/Wideseek/WideseekSpareRows.h"

#include <cstddef>

namespace NS_WS {

namespace {

constexpr std::size_t MAX_SPARE_ROWS = 64;

} // namespace

WideseekItemData& AppendSpare(std::list<WideseekItemData>& listSpare, std::list<WideseekItemData>& listItem) {
    if (listSpare.empty()) {
        return listItem.emplace_back();
    }
    listItem.splice(listItem.end(), listSpare, listSpare.begin());
    return listItem.back();
}

void KeepSpare(std::list<WideseekItemData>& listSpare, std::list<WideseekItemData>& listItem) {
    while (!listItem.empty() && listSpare.size() < MAX_SPARE_ROWS) {
        listSpare.splice(listSpare.end(), listItem, listItem.begin());
    }
    listItem.clear();
}

void PrepareSpare(std::list<WideseekItemData>& listSpare, const std::list<WideseekItemData>& listPage) {
    for (const WideseekItemData& row : listPage) {
        if (listSpare.size() >= listPage.size() || listSpare.size() >= MAX_SPARE_ROWS / 2) {
            return;
        }
        listSpare.push_back(row);
    }
}

} // namespace NS_WS
