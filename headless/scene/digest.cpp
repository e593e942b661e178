#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <unordered_map>
#include <vector>

#include "headless/control/keyframe_chunk.h"
#include "headless/memory_chunks.h"
#include "headless/scene/hash.h"
#include "headless/scene/scene.h"
#include "headless/scene/time_and_units.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

// Everything that nodes refer to, each object once, in the order in which it is met.
class ObjectWalk {
  public:
    void AddReference(Hash& hash, RefTargetHandle target) {
        if (auto* node = dynamic_cast<SceneNode*>(target)) {
            hash.Add(kToNode);
            hash.Add(node->Handle());
        } else {
            hash.Add(target ? kToObject : kToNothing);
            if (target) hash.Add(NumberOf(target));
        }
    }

    void AddObjects(Hash& hash) {
        for (std::size_t i = 0; i < objects_.size(); ++i)
            AddObject(hash, *objects_[i]);
    }

  private:
    static constexpr std::uint64_t kToNothing = 0;
    static constexpr std::uint64_t kToObject = 1;
    static constexpr std::uint64_t kToNode = 2;

    std::uint64_t NumberOf(RefTargetHandle target) {
        const auto [place, isNew] = numbers_.try_emplace(target, objects_.size());
        if (isNew) objects_.push_back(target);
        return place->second;
    }

    void AddObject(Hash& hash, ReferenceTarget& object) {
        hash.Add(object.SuperClassID());
        hash.Add(object.ClassID().partA);
        hash.Add(object.ClassID().partB);
        const auto saved = SavedBytes([&](ISave* save) { return object.Save(save); });
        hash.Add(IsKeyframes(object.ClassID()) ? LastingPart(saved) : std::span(saved));
        for (int i = 0; i < object.NumRefs(); ++i)
            AddReference(hash, object.GetReference(i));
    }

    std::vector<ReferenceTarget*> objects_;
    std::unordered_map<ReferenceTarget*, std::uint64_t> numbers_;
};

void AddNode(Hash& hash, ObjectWalk& walk, SceneNode& node) {
    hash.Add(node.Handle());
    hash.Add(node.Parent()->Handle());
    hash.Add(node.Name());
    hash.Add(node.IsHidden(0, false) ? 1U : 0U);
    hash.Add(node.Selected() ? 1U : 0U);
    hash.Add(node.GetWireColor());
    hash.Add(node.UserProps().size());
    for (const auto& [key, value] : node.UserProps()) {
        hash.Add(key);
        hash.Add(value);
    }
    for (int i = 0; i < node.NumRefs(); ++i)
        walk.AddReference(hash, node.GetReference(i));
}

}  // namespace

void Hash::Add(std::uint64_t number) {
    state_ ^= number;
    state_ *= 0xFF51AFD7ED558CCD;
    state_ ^= state_ >> 32;
}

void Hash::Add(std::span<const std::byte> bytes) {
    Add(static_cast<std::uint64_t>(bytes.size()));
    while (!bytes.empty()) {
        std::uint64_t word = 0;
        const std::size_t count = std::min(sizeof word, bytes.size());
        std::memcpy(&word, bytes.data(), count);
        Add(word);
        bytes = bytes.subspan(count);
    }
}

void Hash::Add(std::string_view text) {
    Add(std::as_bytes(std::span(text)));
}

std::uint64_t SceneDigest() {
    Hash hash;
    ObjectWalk walk;
    hash.Add(static_cast<std::uint32_t>(AnimationRange().Start()));
    hash.Add(static_cast<std::uint32_t>(AnimationRange().End()));
    for (SceneNode* node : TheScene().InOrder())
        AddNode(hash, walk, *node);
    walk.AddObjects(hash);
    return hash.Value();
}

}  // namespace headless
