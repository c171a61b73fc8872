// A contact file (host/contacts/ContactFile.h) that contacts are brought into.
#pragma once

#include "tools/wideseek/import/TargetFile.h"

#include <string>
#include <vector>

namespace wideseek {

class CsvTarget final : public TargetFile {
public:
    CsvTarget(std::filesystem::path path, std::string bytes);

    std::string bytes() const override;

private:
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    using Columns = std::vector<std::size_t>; // what each column holds
    using Cells = std::vector<std::string>;

    Cells cellsAt(const Range& range) const;

    std::string m_bytes;
    Columns m_columns;
    Range m_header;
    std::vector<Range> m_rows; // of each contact
};

} // namespace wideseek
