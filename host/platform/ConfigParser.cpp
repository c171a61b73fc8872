#include "platform/ConfigParser.h"

#include "host/PhoneCore.h"

int configParser_GetConfigInt(const char* pszKey) {
    const auto phone = host::currentPhone();
    return phone && pszKey ? phone->configInt(pszKey) : -1;
}
