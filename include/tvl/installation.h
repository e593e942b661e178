#pragma once

#include <cstddef>

// Where an adaptor looks for its Core, and what it reads of its process's environment.
namespace TVL {

// The value of this key of the local machine names a folder, and the Core lies at a fixed place
// below it. A value of more bytes is not read at all.
inline constexpr char kInstallKey[] = "SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools";
inline constexpr char kInstallValue[] = "datapath";
inline constexpr std::size_t kLongestInstallPath = 1023;
inline constexpr char kCoreLibrary[] = "\\Core\\Core64.dll";

// An environment variable: the file to which the trace is appended; none if it is not set.
inline constexpr char kTraceVariable[] = "LUMISET_TRACE";

}  // namespace TVL
