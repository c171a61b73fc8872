// The phone's log.
#pragma once

#if defined(__GNUC__)
#define APP_LOG_PRINTF __attribute__((format(printf, 3, 4)))
#else
#define APP_LOG_PRINTF
#endif

// Writes one line to the phone's log: the number of the module it comes from, its level (0 emergency to 7 debug, as in
// RFC 5424), and a printf format with its values that ends in a line feed. Never fails and never throws: a line that
// there is no memory for is lost. Never waits for a reader. Any thread, with any lock held.
void app_log(int iModule, int iLevel, const char* pszFormat, ...) APP_LOG_PRINTF;
