#pragma once

#include <cstdint>
#include <string_view>

#include "tvl/xml_node.h"

// How the Core's state lies in a scene file: the words that both of its roads share.
//
//   the chunk 1032 of the global utility: the Core's own element, as readable text
//   the user property "TVL_tag" of a host node, as one line:
//
//     <TVL_tag>
//       <name>plug-in</name> <objectname>the node's name in the Core's terms</objectname>
//       <masternode> ... </masternode>    of an owner's first node: its parts, in the form that
//     </TVL_tag>                          tvl/core_element.h tells
//
//   a plug-in in the older form, once it is converted:
//
//     <TVL_Plugin version="2.5">
//       <type/> <name/> <savedata>base64</savedata>...
//       <nodeinfo>
//         <node name="objectname"> <UID platform="adaptor_3dsmax9">handle</UID> </node> ...
//       </nodeinfo>
//       <inputprofile/>
//     </TVL_Plugin>

inline constexpr std::uint16_t kStateChunk = 1032;
inline constexpr std::uint16_t kOlderStateChunk = 1024;  // read, and never written

inline constexpr const char* kNodeTag = "TVL_tag";  // property and element
inline constexpr const char* kObjectNameElement = "objectname";
inline constexpr const char* kMasterElement = "masternode";
inline constexpr const char* kParentElement = "parent";
inline constexpr const char* kChildIndexElement = "childindex";

inline constexpr const char* kStateElement = "TVL";  // what the Core is given: the plug-ins nested
inline constexpr const char* kPluginElement = "TVL_Plugin";
inline constexpr const char* kNameElement = "name";  // of a plug-in, in tags too
inline constexpr const char* kNodeInfoElement = "nodeinfo";
inline constexpr const char* kNodeElement = "node";
inline constexpr const char* kNodeNameAttribute = "name";
inline constexpr const char* kHandleElement = "UID";
inline constexpr const char* kPlatformAttribute = "platform";
inline constexpr const char* kPlatform = "adaptor_3dsmax9";  // the adaptor's short name

inline XMLNode Element(std::string_view name) {
    XMLNode element;
    element.kind = XMLNode::kElement;
    element.name = name;
    return element;
}
