#include "platform/SystemFile.h"

#include "host/PhoneCore.h"

std::string SystemFile_GetRealPath(const std::string& strPath) {
    const auto phone = host::currentPhone();
    return phone ? phone->realPath(strPath).string() : strPath;
}
