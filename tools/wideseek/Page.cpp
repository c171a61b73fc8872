#include "tools/wideseek/Page.h"

#include <cmath>

namespace wideseek {

Json jsonOf(const Page& page) {
    Json rows = Json::array();
    for (const WideseekItemData& row : page.data.listItem) {
        rows.push_back({{"name", row.strName},
                        {"number", row.strNumber},
                        {"extra1", row.strExtra1},
                        {"extra2", row.strExtra2},
                        {"extra", row.iExtra}});
    }
    return {{"request", page.request + 1},
            {"key", page.data.strKey},
            {"from", page.data.iFromIndex},
            {"count", page.data.iSearchCount},
            {"total", page.data.iTotalCount},
            {"late", page.late},
            {"ms", std::round(page.milliseconds * 1000.0) / 1000.0},
            {"rows", std::move(rows)}};
}

} // namespace wideseek
