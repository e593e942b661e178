#pragma once

namespace replay::form {

// Names in stored state. The adaptor relies on those of the first group.
inline constexpr const char* kMasterNode = "masternode";
inline constexpr const char* kParent = "parent";
inline constexpr const char* kChildIndex = "childindex";
inline constexpr const char* kPlugin = "TVL_Plugin";
inline constexpr const char* kCompressed = "compressed";
inline constexpr const char* kPacked = "1";  // the value of `compressed`
inline constexpr const char* kName = "name";
inline constexpr const char* kNodeInfo = "nodeinfo";
inline constexpr const char* kNode = "node";
inline constexpr const char* kNumber = "UID";

inline constexpr const char* kRoot = "TVL";
inline constexpr const char* kVersion = "version";
inline constexpr const char* kPresentVersion = "1";
inline constexpr const char* kType = "type";
inline constexpr const char* kRecordings = "recordings";
inline constexpr const char* kRecording = "recording";
inline constexpr const char* kCapture = "capture";
inline constexpr const char* kMetresPerUnit = "metresPerUnit";
inline constexpr const char* kFrameSeconds = "frameSeconds";
inline constexpr const char* kFirstFrame = "firstFrame";
inline constexpr const char* kEndFrame = "endFrame";

}  // namespace replay::form
