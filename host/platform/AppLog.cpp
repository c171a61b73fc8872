#include "platform/AppLog.h"

#include "host/PhoneCore.h"

#include <cstdarg>
#include <cstdio>
#include <new>
#include <string>

namespace {

#if defined(__GNUC__)
__attribute__((format(printf, 1, 0)))
#endif
std::string
formatted(const char* format, va_list values) {
    va_list again;
    va_copy(again, values);
    const int size = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (size < 0) {
        return format;
    }
    std::string line(static_cast<std::size_t>(size), '\0');
    std::vsnprintf(line.data(), line.size() + 1, format, values);
    return line;
}

} // namespace

void app_log(int iModule, int iLevel, const char* pszFormat, ...) {
    const auto phone = host::currentPhone();
    if (!phone || !pszFormat) {
        return;
    }
    phone->interrupt(host::PlatformFunction::log);
    if (!phone->options.log) {
        return;
    }
    va_list values;
    va_start(values, pszFormat);
    try {
        std::string line = formatted(pszFormat, values);
        if (line.ends_with('\n')) {
            line.pop_back();
        }
        phone->log(iModule, iLevel, line);
    } catch (const std::bad_alloc&) {
        // The line is lost: whoever logs goes on without it.
    }
    va_end(values);
}
