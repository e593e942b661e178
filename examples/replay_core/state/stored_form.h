#pragma once

#include <string>
#include <string_view>

#include "tvl/xml_node.h"

// How stored state is spelled.
namespace replay {

// Names in it. The adaptor relies on those of the first group.
namespace form {

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
inline constexpr const char* kStartSeconds = "startSeconds";

}  // namespace form

// Texts of our own that can hold anything, such as paths, in an element that becomes text and comes
// back. An attribute loses the '>', and a text child is lost if it is nothing but blanks. So a text
// with a '>' becomes a child element of the name `key`, and any other one an attribute. The element
// has no text children beside.
inline void SetStoredText(XMLNode& element, std::string_view key, std::string_view text) {
    if (text.find('>') == std::string_view::npos)
        element.attributes[std::string(key)] = text;
    else
        element.AddChild(XMLNode(key, text));
}

// The empty text if there is none.
inline std::string StoredText(const XMLNode& element, std::string_view key) {
    const auto attribute = element.attributes.find(std::string(key));
    return attribute == element.attributes.end() ? element.Child(key).Text() : attribute->second;
}

}  // namespace replay
