#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "headless/headless_api.h"
#include "headless/scene_view.h"
#include "host/interval.h"
#include "host/types.h"

// Looks at scene files from outside, as plain data for people, and tells two of them apart. It
// needs neither a session nor a plug-in, and reads one stored object at a time. A file that cannot
// be read, or is damaged, throws a std::runtime_error that names the file and the byte.
namespace headless {

// Of what has been saved; all empty for nothing.
struct ClassInFile {
    SClass_ID superClass = 0;
    Class_ID id;
    std::string name;
};

struct NodeInFile {
    std::uint32_t handle = 0;
    std::uint32_t parent = 0;  // the parent's handle, 0 at the top of the scene
    std::string name;
    ClassInFile object;
    ClassInFile controller;    // of the transform
    KeyView keys;              // of the transform controller, if its class is one that is known
    std::size_t tagBytes = 0;  // of what the plug-in has noted on the node for its Core
    bool hidden = false;
    bool selected = false;
};

struct ChunkInFile {
    std::uint16_t id = 0;
    std::uint64_t bytes = 0;  // of its contents
};

struct UtilityInFile {
    ClassInFile type;
    std::vector<ChunkInFile> chunks;
};

struct SceneFileView {
    int unitType = 0;  // host/units.h
    float unitScale = 1;
    int frameRate = 0;
    int ticksPerFrame = 0;
    TimeValue time = 0;
    Interval range;
    std::vector<NodeInFile> nodes;  // a parent before its children, children in their order
    std::vector<UtilityInFile> utilities;
    std::vector<ClassInFile> classes;  // of all objects, each once, as they are met in the file
};

HEADLESS_API SceneFileView ViewSceneFile(const std::string& path);

// Whether the running session can make an object of that class. What it cannot make it keeps as it
// was stored.
HEADLESS_API bool IsClassLoaded(const ClassInFile& type);

// One thing in which two scene files differ.
struct SceneDifference {
    std::string place;  // such as: node "Hip" (7), transform controller
    std::string what;   // such as: 120 keys and 121 keys
};

// The key that a keyframe controller of the plug-in has cached last. Evaluating moves it, so it
// tells nothing, unless it is the only one that the controller has; of that one the value counts.
enum class CachedKeys { kLeftOut, kCompared };

// Empty for two files of the same scene, of which the counter that new handles come from is no
// part. Nodes are the same if handle and name agree, else if their names and those of all their
// parents do, else if their handles do. Objects are compared along the references of their nodes.
HEADLESS_API std::vector<SceneDifference> CompareSceneFiles(const std::string& first,
                                                            const std::string& second,
                                                            CachedKeys cachedKeys);

}  // namespace headless
