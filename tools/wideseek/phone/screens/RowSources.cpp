#include "tools/wideseek/phone/screens/RowSources.h"

#include "host/sources/ContactLookup.h"
#include "host/sources/SourceNames.h"

#include <algorithm>

namespace wideseek {

namespace {

std::vector<std::string> labelsOf(const std::vector<host::NameAndNumber>& rows, const host::Phone& phone) {
    const std::vector<EnabledSource> sources = enabledSources();
    const EnabledSource* server = serverAmong(sources, phone);
    std::vector<std::string> labels(rows.size());
    std::vector<bool> told(rows.size());
    for (const EnabledSource& source : sources) {
        const host::ContactLookup* lookup = source.nth == 0 ? phone.lookup(source.name) : nullptr;
        const std::vector<bool> held = lookup ? lookup->holds(rows) : std::vector<bool>(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (held[i] && !told[i]) {
                told[i] = true;
                labels[i] = source.label;
            }
        }
    }
    for (std::size_t i = 0; server && i < rows.size(); ++i) {
        labels[i] = told[i] ? labels[i] : server->label;
    }
    return labels;
}

} // namespace

const std::vector<std::string>& RowSources::of(const std::vector<WideseekItemData>& rows) {
    const auto isSame = [](const auto& known, const WideseekItemData& row) {
        return known.first == row.strName && known.second == row.strNumber;
    };
    if (!std::equal(m_rows.begin(), m_rows.end(), rows.begin(), rows.end(), isSame)) {
        m_rows.clear();
        std::vector<host::NameAndNumber> wanted;
        for (const WideseekItemData& row : rows) {
            m_rows.emplace_back(row.strName, row.strNumber);
            wanted.push_back({row.strName, row.strNumber});
        }
        m_labels = labelsOf(wanted, m_phone);
    } else if (rows.empty()) {
        m_labels.clear();
    }
    return m_labels;
}

const EnabledSource* serverAmong(const std::vector<EnabledSource>& sources, const host::Phone& phone) {
    const auto server = std::find_if(sources.begin(), sources.end(), [&](const EnabledSource& source) {
        return source.name == host::sourceName::ldap && phone.asksLdapServer();
    });
    return server == sources.end() ? nullptr : &*server;
}

} // namespace wideseek
