#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <unordered_map>

#include "headless/comparison/comparison.h"
#include "headless/control/keyframe_chunk.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_file.h"
#include "headless/scene_file_view.h"
#include "headless/storage/chunks.h"

namespace headless {
namespace {

bool IsSame(const StoredClass& a, const StoredClass& b) {
    return a.Key() == b.Key() && a.name == b.name;
}

std::string Both(const std::string& first, const std::string& second) {
    return first + " and " + second;
}
std::string Both(const std::string& what, std::int64_t first, std::int64_t second) {
    return what + " " + Both(std::to_string(first), std::to_string(second));
}

class Comparison {
  public:
    Comparison(const std::string& first, const std::string& second, CachedKeys cachedKeys)
        : firstReader_(ReadTold(first)),
          secondReader_(ReadTold(second)),
          cachedKeys_(cachedKeys),
          match_(MatchNodes(first_, second_)) {}

    std::vector<SceneDifference> Differences() {
        CompareSettings();
        CompareNodes();
        CompareObjects();
        CompareUtilities();
        return std::move(found_);
    }

  private:
    // Two objects that should be alike, and what refers to them.
    struct ObjectPair {
        std::uint32_t first;
        std::uint32_t second;
        std::string place;
    };

    void Differ(const std::string& place, const std::string& what) {
        found_.push_back({place, what});
    }

    void CompareNumber(const std::string& place, const std::string& what, std::int64_t first,
                       std::int64_t second) {
        if (first != second) Differ(place, Both(what, first, second));
    }

    void CompareSettings() {
        const StoredSettings& a = first_.settings;
        const StoredSettings& b = second_.settings;
        const std::string place = "settings";
        CompareNumber(place, "type of unit", a.unitType, b.unitType);
        if (a.unitScale != b.unitScale)
            Differ(place, "scale of the unit " +
                              Both(std::to_string(a.unitScale), std::to_string(b.unitScale)));
        CompareNumber(place, "frame rate", a.frameRate, b.frameRate);
        CompareNumber(place, "ticks per frame", a.ticksPerFrame, b.ticksPerFrame);
        CompareNumber(place, "current tick", a.time, b.time);
        CompareNumber(place, "first tick of the range", a.range.Start(), b.range.Start());
        CompareNumber(place, "last tick of the range", a.range.End(), b.range.End());
    }

    void CompareNodes() {
        std::uint32_t last = 0;
        for (std::uint32_t i = 0; i < first_.nodes.size(); ++i) {
            const StoredNode& node = first_.nodes[i];
            const std::uint32_t match = match_.inSecond[i];
            if (match == kNoMatch) {
                Differ(NameOf(node), "only in the first file");
                continue;
            }
            if (match < last) Differ(NameOf(node), "stands at another place among the nodes");
            last = std::max(last, match);
            CompareNode(node, second_.nodes[match]);
        }
        for (std::uint32_t i = 0; i < second_.nodes.size(); ++i)
            if (match_.inFirst[i] == kNoMatch)
                Differ(NameOf(second_.nodes[i]), "only in the second file");
    }

    void CompareNode(const StoredNode& a, const StoredNode& b) {
        const std::string place = NameOf(a);
        CompareNumber(place, "handle", a.handle, b.handle);
        if (a.name != b.name) Differ(place, "name " + TextDifference(a.name, b.name));
        CompareParents(place, a, b);
        CompareNumber(place, "hidden", a.isHidden, b.isHidden);
        CompareNumber(place, "selected", a.isSelected, b.isSelected);
        CompareNumber(place, "colour", a.wireColour, b.wireColour);
        CompareProperties(place, a, b);
        CompareReference(place + ", transform controller", a.references[kTransformReference],
                         b.references[kTransformReference]);
        CompareReference(place + ", object", a.references[kObjectReference],
                         b.references[kObjectReference]);
    }

    void CompareParents(const std::string& place, const StoredNode& a, const StoredNode& b) {
        const bool isTop = a.parent == kNoStoredParent;
        const std::uint32_t expected = isTop ? kNoStoredParent : match_.inSecond[a.parent];
        if (b.parent != expected || (!isTop && expected == kNoMatch))
            Differ(place, "parent " + Both(ParentOf(first_, a), ParentOf(second_, b)));
    }

    static std::string ParentOf(const SceneDocument& document, const StoredNode& node) {
        return node.parent == kNoStoredParent ? "none" : NameOf(document.nodes[node.parent]);
    }

    void CompareProperties(const std::string& place, const StoredNode& a, const StoredNode& b) {
        std::map<std::string, std::array<const std::string*, 2>> values;
        for (const auto& [key, value] : a.userProperties)
            values[key][0] = &value;
        for (const auto& [key, value] : b.userProperties)
            values[key][1] = &value;
        for (const auto& [key, sides] : values) {
            const auto& [left, right] = sides;
            const std::string what = "property " + Quoted(key) + " ";
            if (!left || !right)
                Differ(place, what + Quoted(left ? *left : *right) + " only in the " +
                                  (left ? "first" : "second") + " file");
            else if (*left != *right)
                Differ(place, what + TextDifference(*left, *right));
        }
    }

    void CompareReference(const std::string& place, const StoredReference& a,
                          const StoredReference& b) {
        if (a.kind == StoredTarget::kObject && b.kind == StoredTarget::kObject) {
            MeetObjects(place, a.index, b.index);
            return;
        }
        const bool isSame = a.kind == b.kind && (a.kind == StoredTarget::kNothing ||
                                                 match_.inSecond[a.index] == b.index);
        if (!isSame) Differ(place, Both(TargetOf(first_, a), TargetOf(second_, b)));
    }

    static std::string TargetOf(const SceneDocument& document, const StoredReference& reference) {
        switch (reference.kind) {
            case StoredTarget::kObject:
                return NameOf(document.objects[reference.index].type);
            case StoredTarget::kNode:
                return NameOf(document.nodes[reference.index]);
            default:
                return "nothing";
        }
    }

    // What is shared must be shared in both files.
    void MeetObjects(const std::string& place, std::uint32_t first, std::uint32_t second) {
        const auto [known, isNew] = objectInSecond_.try_emplace(first, second);
        const bool isNewInSecond = reachedInSecond_.insert(second).second;
        if (isNew && isNewInSecond)
            toCompare_.push_back({first, second, place});
        else if (known->second != second || isNew)
            Differ(place, "shared with others in one file that it is not shared with in the other");
    }

    void CompareObjects() {
        for (std::size_t i = 0; i < toCompare_.size(); ++i) {
            const ObjectPair pair = toCompare_[i];
            CompareObject(pair.place, first_.objects[pair.first], second_.objects[pair.second]);
        }
        if (found_.empty())
            CompareNumber("scene", "number of objects",
                          static_cast<std::int64_t>(first_.objects.size()),
                          static_cast<std::int64_t>(second_.objects.size()));
    }

    void CompareObject(const std::string& place, const StoredObject& a, const StoredObject& b) {
        if (!IsSame(a.type, b.type)) {
            Differ(place, Both(NameOf(a.type), NameOf(b.type)));
            return;
        }
        CompareSaved(place, a, b);
        if (a.references.size() != b.references.size()) {
            CompareNumber(place, "number of references",
                          static_cast<std::int64_t>(a.references.size()),
                          static_cast<std::int64_t>(b.references.size()));
            return;
        }
        for (std::size_t i = 0; i < a.references.size(); ++i)
            CompareReference(place + ", reference " + std::to_string(i), a.references[i],
                             b.references[i]);
    }

    void CompareSaved(const std::string& place, const StoredObject& a, const StoredObject& b) {
        const auto first = firstReader_.BytesOf(a.bytes);
        const auto second = secondReader_.BytesOf(b.bytes);
        const auto left = Compared(a.type, first);
        const auto right = Compared(b.type, second);
        if (std::equal(left.begin(), left.end(), right.begin(), right.end())) return;
        std::string what = KeyDifference(KeysOf(a.type, first), KeysOf(b.type, second));
        if (what.empty()) what = ContentDifference(left, right);
        Differ(place, what);
    }

    std::span<const std::byte> Compared(const StoredClass& type,
                                        std::span<const std::byte> saved) const {
        const bool cut = cachedKeys_ == CachedKeys::kLeftOut && IsKeyframes(type.id);
        return cut ? LastingPart(saved) : saved;
    }

    // A file has at most one of each class.
    void CompareUtilities() {
        for (const StoredUtility& utility : first_.utilities) {
            const std::string place = "utility " + NameOf(utility.type);
            if (const StoredUtility* other = Counterpart(utility, second_))
                CompareChunks(place, utility.chunks, other->chunks);
            else
                Differ(place, "only in the first file");
        }
        for (const StoredUtility& utility : second_.utilities)
            if (!Counterpart(utility, first_))
                Differ("utility " + NameOf(utility.type), "only in the second file");
    }

    static const StoredUtility* Counterpart(const StoredUtility& utility,
                                            const SceneDocument& document) {
        for (const StoredUtility& other : document.utilities)
            if (IsSame(utility.type, other.type)) return &other;
        return nullptr;
    }

    void CompareChunks(const std::string& place, const StoredRange& a, const StoredRange& b) {
        const std::size_t before = found_.size();
        const auto first = firstReader_.BytesOf(a);
        const auto second = secondReader_.BytesOf(b);
        if (first == second) return;
        MemorySource firstSource(first);
        MemorySource secondSource(second);
        ChunkReader left(firstSource);
        ChunkReader right(secondSource);
        while (CompareNextChunk(place, left, right)) {
        }
        if (found_.size() == before) Differ(place, ContentDifference(first, second));
    }

    // False: there is no further chunk to compare.
    bool CompareNextChunk(const std::string& place, ChunkReader& left, ChunkReader& right) {
        const bool inFirst = left.OpenChunk() == IO_OK;
        const bool inSecond = right.OpenChunk() == IO_OK;
        if (!inFirst && !inSecond) return false;
        if (inFirst != inSecond || left.CurChunkID() != right.CurChunkID()) {
            Differ(place,
                   Both(inFirst ? "chunk " + std::to_string(left.CurChunkID()) : "no chunk",
                        inSecond ? "chunk " + std::to_string(right.CurChunkID()) : "no chunk"));
            return false;
        }
        const auto first = Contents(left);
        const auto second = Contents(right);
        if (first != second)
            Differ(place + ", chunk " + std::to_string(left.CurChunkID()),
                   ContentDifference(first, second));
        left.CloseChunk();
        right.CloseChunk();
        return true;
    }

    static std::vector<std::byte> Contents(ChunkReader& chunk) {
        std::vector<std::byte> bytes(static_cast<std::size_t>(chunk.Left()));
        if (!bytes.empty())
            chunk.Read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr);
        return bytes;
    }

    SceneFileReader firstReader_;
    SceneFileReader secondReader_;
    const SceneDocument& first_ = firstReader_.Document();
    const SceneDocument& second_ = secondReader_.Document();
    CachedKeys cachedKeys_;
    NodeMatch match_;
    std::unordered_map<std::uint32_t, std::uint32_t> objectInSecond_;  // by the first's index
    std::set<std::uint32_t> reachedInSecond_;
    std::vector<ObjectPair> toCompare_;  // grows while it is gone through
    std::vector<SceneDifference> found_;
};

}  // namespace

std::vector<SceneDifference> CompareSceneFiles(const std::string& first, const std::string& second,
                                               CachedKeys cachedKeys) {
    return Comparison(first, second, cachedKeys).Differences();
}

}  // namespace headless
