#pragma once

#include <array>
#include <cstddef>
#include <string>

// What reaches a Core around the host, which knows nothing of it: environment variables. The
// example Core describes them in its own README; these are their names.
namespace headless {

inline constexpr char kCaptureVariable[] = "LUMISET_CAPTURE";             // paths, a line each
inline constexpr char kCaptureScaleVariable[] = "LUMISET_CAPTURE_SCALE";  // metres in a file unit
inline constexpr char kOptimisedVariable[] = "LUMISET_OPTIMISED";         // option 1027: 0 or 1
inline constexpr char kFollowCameraVariable[] = "LUMISET_FOLLOW_CAMERA";  // 0 or 1
inline constexpr char kGroundVariable[] = "LUMISET_GROUND";               // a handle
inline constexpr char kGuideVariable[] = "LUMISET_GUIDE";                 // a handle
inline constexpr char kProgressVariable[] = "LUMISET_PROGRESS";
inline constexpr char kTakeVariable[] = "LUMISET_TAKE";                 // a name
inline constexpr char kReplaceVariable[] = "LUMISET_REPLACE";           // 0 or 1
inline constexpr char kPartialVariable[] = "LUMISET_PARTIAL";           // 0 or 1
inline constexpr char kMergeVariable[] = "LUMISET_MERGE";               // paths, a line each
inline constexpr char kSampleVariable[] = "LUMISET_SAMPLE";             // START:END:STEP, seconds
inline constexpr char kSampleNodesVariable[] = "LUMISET_SAMPLE_NODES";  // names, a line each
inline constexpr char kInspectVariable[] = "LUMISET_INSPECT";           // handles, a line each
inline constexpr char kInspectTimeVariable[] = "LUMISET_INSPECT_TIME";  // seconds
inline constexpr char kPressVariable[] = "LUMISET_PRESS";               // the number of an option
inline constexpr char kCsvVariable[] = "LUMISET_CSV";

// All that make up a request.
inline constexpr std::array kRequestVariables = {
    kCaptureVariable,     kCaptureScaleVariable, kOptimisedVariable,   kProgressVariable,
    kMergeVariable,       kSampleVariable,       kSampleNodesVariable, kInspectVariable,
    kInspectTimeVariable, kPressVariable,        kCsvVariable,         kFollowCameraVariable,
    kGroundVariable,      kGuideVariable,        kTakeVariable,        kReplaceVariable,
    kPartialVariable};

// What a person typed to have the variable set.
struct OptionOfVariable {
    const char* variable;
    const char* option;
};
inline constexpr std::array kOptions = {OptionOfVariable{kCaptureScaleVariable, "--scale"},
                                        OptionOfVariable{kSampleVariable, "--times"},
                                        OptionOfVariable{kInspectTimeVariable, "--time"},
                                        OptionOfVariable{kTakeVariable, "--take"},
                                        OptionOfVariable{kReplaceVariable, "--replace"},
                                        OptionOfVariable{kPartialVariable, "--partial"}};

inline constexpr char kReportVariable[] = "LUMISET_REPORT";  // the file for the answer

inline constexpr char kTraceVariable[] = "LUMISET_TRACE";  // by the plug-in

// Where the plug-in looks for a Core: below the folder that the value of this key of the local
// machine names, of which it reads so many bytes or nothing.
inline constexpr char kInstallKey[] = "SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools";
inline constexpr char kInstallValue[] = "datapath";
inline constexpr std::size_t kInstallValueRoom = 1023;
inline constexpr char kCoreLibrary[] = "\\Core\\Core64.dll";

}  // namespace headless
