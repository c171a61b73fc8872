#include "tools/wideseek/import/TargetFile.h"

#include "tools/wideseek/import/CardTarget.h"
#include "tools/wideseek/import/CsvTarget.h"

#include "host/formats/VCardProperty.h"

namespace wideseek {

std::unique_ptr<TargetFile> openTargetFile(const std::filesystem::path& path, std::string bytes) {
    if (host::isSameName(path.extension().string(), ".vcf")) {
        return std::make_unique<CardTarget>(path, bytes);
    }
    return std::make_unique<CsvTarget>(path, std::move(bytes));
}

} // namespace wideseek
