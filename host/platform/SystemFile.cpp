#include "platform/SystemFile.h"

#include "host/PhoneCore.h"

#include <filesystem>
#include <system_error>

std::string SystemFile_GetRealPath(const std::string& strPath) {
    const auto phone = host::currentPhone();
    const std::filesystem::path path = phone ? phone->realPath(strPath) : std::filesystem::path(strPath);
    std::error_code ignored;
    const std::filesystem::file_type type = std::filesystem::status(path, ignored).type();
    const bool readable = type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
    return readable ? path.string() : std::string();
}
