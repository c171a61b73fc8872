#include "tools/wideseek/check/SourceListReader.h"

#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace wideseek {

namespace {

constexpr const char* configFolder = "config/data";

} // namespace

SourceListReader::SourceListReader()
    : m_phone({.root = m_root.path(),
               .driver = host::Driver::stepped,
               .ldapDelay = std::nullopt,
               .contactFiles = false,
               .log = nullptr}) {
    std::filesystem::create_directories(m_root.path() / configFolder);
}

std::list<NS_WS::WideseekCfgItemData> SourceListReader::read(const std::string& bytes) const {
    std::ofstream file(m_root.path() / configFolder / "wideseek.xml", std::ios::binary);
    if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) {
        throw std::runtime_error(m_root.path().string() + ": the copy of the source list cannot be written");
    }
    NS_WS::WideseekCfgListData list;
    if (!Wideseek_PreInit() || !NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list)) {
        throw std::runtime_error("the search library could not be started: no memory for it");
    }
    NS_WS::CWideseekController::ReleaseInstance();
    return list.listItem;
}

} // namespace wideseek
