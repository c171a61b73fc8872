#include "tools/wideseek/import/TargetFile.h"

#include "tools/wideseek/import/CardTarget.h"
#include "tools/wideseek/import/CsvTarget.h"

#include "host/text/Fold.h"

namespace wideseek {

std::unique_ptr<TargetFile> openTargetFile(const std::filesystem::path& path, std::string bytes) {
    if (host::text::isSameName(path.extension().string(), ".vcf")) {
        return std::make_unique<CardTarget>(path, bytes);
    }
    return std::make_unique<CsvTarget>(path, std::move(bytes));
}

} // namespace wideseek
