// Marks what libWideseek.so shows to its users; the library is built with everything else hidden.
#pragma once

#if defined(__GNUC__)
#define WS_API __attribute__((visibility("default")))
#else
#define WS_API
#endif
