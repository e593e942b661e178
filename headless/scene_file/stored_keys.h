#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "headless/scene_file/scene_document.h"
#include "host/point3.h"

// The keys of a stored controller, without its plug-in.
namespace headless {

struct StoredKey {
    TimeValue time = 0;      // ticks
    Point3 value;            // the position under the parent in host units; of a number x alone
    std::uint64_t hash = 0;  // of everything about the key
};

struct StoredKeys {
    bool isTransform = false;
    std::vector<StoredKey> keys;  // times strictly rise, if they do in the file
};

// Of the plug-in's keyframe controllers and of the host's own; no keys for any other class. Where a
// transform keeps a track for each of its parts, there is a key wherever one of them has one.
StoredKeys KeysOf(const StoredClass& type, std::span<const std::byte> saved);

}  // namespace headless
