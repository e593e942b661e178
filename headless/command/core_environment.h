#pragma once

#include <string>

// What reaches a Core around the host, which knows nothing of it: environment variables. The
// example Core describes them in its own README; these are their names.
namespace headless {

inline constexpr char kCaptureVariable[] = "LUMISET_CAPTURE";
inline constexpr char kCaptureScaleVariable[] = "LUMISET_CAPTURE_SCALE";  // metres in a file unit
inline constexpr char kCsvVariable[] = "LUMISET_CSV";
inline constexpr char kReportVariable[] = "LUMISET_REPORT";
inline constexpr char kOptimisedVariable[] = "LUMISET_OPTIMISED";  // option 1027: 0 or 1
inline constexpr char kProgressVariable[] = "LUMISET_PROGRESS";
inline constexpr char kTraceVariable[] = "LUMISET_TRACE";  // read by the plug-in

// An empty value takes the variable away.
void SetVariable(const char* name, const std::string& value);

}  // namespace headless
