// Where rows come from: the label of the first enabled source that holds a row's name and number.
//
//     RowSources sources(phone);
//     for (const std::string& label : sources.of(rows)) { ... }
//
// Asked for the rows on the screen only, and remembered while they stay; each hundred thousand contacts take about half
// a millisecond. One thread.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/Phone.h"
#include "tools/wideseek/phone/EnabledSources.h"

#include <string>
#include <utility>
#include <vector>

namespace wideseek {

class RowSources {
public:
    explicit RowSources(const host::Phone& phone) : m_phone(phone) {}

    // One label for each row; empty: no source holds it any more. What no file holds is a server's, where one is asked.
    const std::vector<std::string>& of(const std::vector<WideseekItemData>& rows);

    // Files or sources may have changed: a new page has come.
    void forget() { m_rows.clear(); }

private:
    const host::Phone& m_phone;
    std::vector<std::pair<std::string, std::string>> m_rows; // names and numbers
    std::vector<std::string> m_labels;
};

// The enabled source that is asked over the network, so that nothing of it is kept here; null when there is none.
const EnabledSource* serverAmong(const std::vector<EnabledSource>& sources, const host::Phone& phone);

} // namespace wideseek
