#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "headless/storage/byte_source.h"
#include "host/interval.h"
#include "host/types.h"

namespace headless {

// A scene file as plain data: everything but the bytes that objects and utilities have saved, whose
// place in the file is told instead. See docs/scene-file.md for how it lies in the file.

// Bytes of the file from `begin` up to, not including, `end`.
struct StoredRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    std::uint64_t Size() const { return end - begin; }
};

// By which classes are told apart, and put in order.
using ClassKey = std::tuple<SClass_ID, std::uint32_t, std::uint32_t>;
inline ClassKey KeyOf(SClass_ID superClass, Class_ID id) {
    return {superClass, id.partA, id.partB};
}

// The class of what was saved, by which it is made again. The name is for people, and stays known
// while the class is not loaded.
struct StoredClass {
    SClass_ID superClass = 0;
    Class_ID id;
    std::string name;

    ClassKey Key() const { return KeyOf(superClass, id); }
};

enum class StoredTarget : std::uint8_t { kNothing = 0, kObject = 1, kNode = 2 };

// What a reference points at: an object or a node, by its index in the document.
struct StoredReference {
    StoredTarget kind = StoredTarget::kNothing;
    std::uint32_t index = 0;
};

struct StoredObject {
    std::uint64_t position = 0;  // in the file, for messages
    StoredClass type;
    std::vector<StoredReference> references;  // by the object's reference index
    StoredRange bytes;                        // what the object's `Save` wrote, chunks as they are
};

inline constexpr std::uint32_t kNoStoredParent = 0xFFFFFFFF;

struct StoredNode {
    std::uint64_t position = 0;  // in the file, for messages
    std::uint32_t handle = 0;
    std::uint32_t parent = kNoStoredParent;  // index of a node that stands ahead of this one
    std::string name;
    bool isHidden = false;
    bool isSelected = false;
    std::uint32_t wireColour = 0;
    std::vector<std::pair<std::string, std::string>> userProperties;  // ascending by key
    std::vector<StoredReference> references;  // transform controller, object
};

struct StoredUtility {
    StoredClass type;
    StoredRange chunks;  // what the utility's `Save` wrote
};

struct StoredSettings {
    int unitType = 0;  // host/units.h
    float unitScale = 1;
    int frameRate = 0;
    int ticksPerFrame = 0;
    TimeValue time = 0;
    Interval range;
    std::uint32_t lastHandle = 0;  // new handles go on behind it
};

struct SceneDocument {
    StoredSettings settings;
    std::vector<StoredObject> objects;
    std::vector<StoredNode> nodes;  // parents before their children, children in their order
    std::vector<StoredUtility> utilities;
};

// Reads a scene file from end to end, checks every checksum, length and field, and gives its plain
// data; `path` is for messages. What the parts of the document say about each other is left to
// CheckDocument. Throws SceneFileError.
SceneDocument ReadDocument(ByteSource& source, const std::string& path);

// Checks what the parts of a document say about each other: handles, parents, the targets of
// references and the chains that these make. Throws SceneFileError; `path` is for messages.
void CheckDocument(const SceneDocument& document, const std::string& path);

// All objects and, behind them, all nodes of a checked document, each by its place in that row,
// what is referred to ahead of who refers to it.
std::vector<std::size_t> TargetsFirst(const SceneDocument& document);

}  // namespace headless
