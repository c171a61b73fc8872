// The names by which the phone's reports (kernel/Trace.h) and lookups call its sources.
#pragma once

#include <string_view>

namespace host::sourceName {

inline constexpr std::string_view localDirectory = "local directory";
inline constexpr std::string_view remoteDirectory = "remote directory";
inline constexpr std::string_view callLog = "call log";
inline constexpr std::string_view broadSoftDirectory = "BroadSoft directory";
inline constexpr std::string_view ldap = "LDAP";
inline constexpr std::string_view presence = "presence";

} // namespace host::sourceName
