#pragma once

// How the replay Core is asked for something: by environment variables, which it reads whenever its
// button is pressed. Its README says what each of them means.
namespace replay::variable {

// What is to be done; the first of these that is set is.
inline constexpr char kMerge[] = "LUMISET_MERGE";       // paths, a line each
inline constexpr char kSample[] = "LUMISET_SAMPLE";     // START:END:STEP, seconds
inline constexpr char kInspect[] = "LUMISET_INSPECT";   // handles, a line each
inline constexpr char kCaptures[] = "LUMISET_CAPTURE";  // paths, a line each

// How it is to be done.
inline constexpr char kSampleNodes[] = "LUMISET_SAMPLE_NODES";  // the host's names, a line each
inline constexpr char kInspectTime[] = "LUMISET_INSPECT_TIME";  // seconds
inline constexpr char kScale[] = "LUMISET_CAPTURE_SCALE";       // metres in a unit of the captures
inline constexpr char kHeight[] = "LUMISET_CAPTURE_HEIGHT";     // metres, instead of a scale
inline constexpr char kFrom[] = "LUMISET_CAPTURE_FROM";         // a frame, or seconds as 2.5s
inline constexpr char kTo[] = "LUMISET_CAPTURE_TO";             // the same, of the last frame
inline constexpr char kStart[] = "LUMISET_CAPTURE_START";       // seconds in the scene
inline constexpr char kRange[] = "LUMISET_RANGE";               // one of these; it grows if not set
inline constexpr char kRangeStays[] = "stay";
inline constexpr char kRangeFits[] = "fit";
inline constexpr char kTake[] = "LUMISET_TAKE";                   // a name
inline constexpr char kReplace[] = "LUMISET_REPLACE";             // 0 or 1
inline constexpr char kPartial[] = "LUMISET_PARTIAL";             // 0 or 1
inline constexpr char kOptimised[] = "LUMISET_OPTIMISED";         // 0 or 1
inline constexpr char kFollowCamera[] = "LUMISET_FOLLOW_CAMERA";  // 0 or 1
inline constexpr char kGround[] = "LUMISET_GROUND";               // a handle
inline constexpr char kGuide[] = "LUMISET_GUIDE";                 // a handle

// Files to write, whether to show the progress on stderr, and whether Ctrl-C is to end the work and
// not the process.
inline constexpr char kCsv[] = "LUMISET_CSV";
inline constexpr char kReport[] = "LUMISET_REPORT";
inline constexpr char kProgress[] = "LUMISET_PROGRESS";            // 1
inline constexpr char kInterruptible[] = "LUMISET_INTERRUPTIBLE";  // 1

}  // namespace replay::variable
