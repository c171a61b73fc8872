#include "tools/wideseek/sources/SourceListNotes.h"

#include "tools/wideseek/check/SourceListCheck.h"

namespace wideseek {

std::vector<std::string> SourceListNotes::take() {
    std::string ignored;
    const auto stamp = host::stampOf(m_path, ignored);
    if (m_told && stamp == m_stamp) {
        return {};
    }
    m_told = true;
    m_stamp = stamp;
    m_notes = warningsOf(explainSourceList(m_path));
    return m_notes;
}

} // namespace wideseek
