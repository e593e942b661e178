#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "headless/headless_api.h"
#include "host/types.h"

class INode;

// Looks at the running session from outside: its nodes as plain data, one number that stands for
// the whole scene, and a count of what is alive. Looking changes nothing.
namespace headless {

// The keys of a controller and of its parts, as these report them.
struct KeyView {
    int count = 0;        // distinct times
    TimeValue first = 0;  // ticks; 0 if there are no keys
    TimeValue last = 0;
    std::size_t storedBytes = 0;  // what controller and parts save
};

struct NodeView {
    std::string name;
    std::uint32_t handle = 0;
    std::uint32_t parent = 0;        // the parent's handle, 0 at the top of the scene
    SClass_ID objectSuperClass = 0;  // 0, {0, 0} and "" for a node without an object
    Class_ID objectClass;
    std::string objectClassName;
    Class_ID controllerClass;  // of the transform controller
    std::string controllerClassName;
    KeyView keys;  // of the transform controller
    bool hidden = false;
    bool selected = false;
    std::uint32_t wireColour = 0;  // red in the low byte
    std::map<std::string, std::string> userProperties;
};

// All nodes of the scene, a parent before its children, children in their order.
HEADLESS_API std::vector<NodeView> Nodes();

// The first node of that name in the order of Nodes(); null if there is none.
HEADLESS_API INode* FindNode(std::string_view name);

// The world position of a node's pivot, in host units. False if no such node is in the scene.
struct PositionView {
    float x = 0;
    float y = 0;
    float z = 0;
};
HEADLESS_API bool NodePosition(std::uint32_t handle, TimeValue t, PositionView& position);

// The directories that were added to the bitmap search path, in their order.
HEADLESS_API std::vector<std::string> MapDirectories();

// Stands for the state of the scene: two scenes that differ in a node, a link, a name, a property,
// the selection, the animation range or in anything that a controller or an object saves have
// different digests, but for a chance of 2^-64. Left out are the current time, the counter that new
// handles come from, and the cached key of the plug-in's two keyframe controllers, of which the
// value counts while they have no other, because these move without any change of the scene.
HEADLESS_API std::uint64_t SceneDigest();

// What is alive in this process.
struct Census {
    std::map<std::string, std::size_t> objects;  // host objects, by class name
    std::size_t objectCount = 0;                 // their sum
    std::size_t heapBlocks = 0;                  // blocks on the host's heap, objects among them
    std::size_t controlModules = 0;              // how often a module asked for custom controls
};
HEADLESS_API Census TakeCensus();

}  // namespace headless
