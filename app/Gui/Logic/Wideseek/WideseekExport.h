// Marks what libWideseek.so shows to its users; the library is built with everything else hidden.
#pragma once

#if defined(__GNUC__)
#define WS_API __attribute__((visibility("default")))
#else
#define WS_API
#endif

// Marks a class whose type information callers need although they get at few of its operations: a caller that is built
// with -fsanitize=vptr asks for it. cmake/libWideseek.map names what of such a class is shown.
#define WS_API_TYPE WS_API
