#include <algorithm>
#include <unordered_set>

#include "headless/scene_file/chunk_fields.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_document.h"
#include "host/types.h"

namespace headless {
namespace {

bool IsInside(const SceneDocument& document, const StoredReference& reference) {
    if (reference.kind == StoredTarget::kObject) return reference.index < document.objects.size();
    if (reference.kind == StoredTarget::kNode) return reference.index < document.nodes.size();
    return true;
}

// Whether a node can have what it refers to as its transform controller, or as its object.
bool Suits(const SceneDocument& document, const StoredReference& reference, bool asController) {
    if (reference.kind == StoredTarget::kNothing) return true;
    if (reference.kind != StoredTarget::kObject) return false;
    const SClass_ID superClass = document.objects[reference.index].type.superClass;
    return (superClass == CTRL_MATRIX3_CLASS_ID) == asController;
}

class Checker {
  public:
    Checker(const SceneDocument& document, const std::string& path)
        : document_(document), path_(path) {}

    void CheckNodes() const {
        std::unordered_set<std::uint32_t> handles;
        for (std::size_t i = 0; i < document_.nodes.size(); ++i) {
            const StoredNode& node = document_.nodes[i];
            Require(handles.insert(node.handle).second, node, "a handle that another node has too");
            Require(node.handle <= document_.settings.lastHandle, node,
                    "a handle behind the last handle");
            Require(node.parent == kNoStoredParent || node.parent < i, node,
                    "a parent that does not stand ahead of its child");
            CheckReferences(node);
            Require(Suits(document_, node.references[kTransformReference], true), node,
                    "a transform controller that is none");
            Require(Suits(document_, node.references[kObjectReference], false), node,
                    "an object that is none");
        }
    }

    void CheckObjects() const {
        for (const StoredObject& object : document_.objects)
            CheckReferences(object);
    }

    void CheckUtilities() const {
        const auto& utilities = document_.utilities;
        for (std::size_t i = 1; i < utilities.size(); ++i) {
            if (utilities[i - 1].type.Key() >= utilities[i].type.Key())
                FailAt(path_, utilities[i].chunks.begin,
                       "the utilities are not in the order of their classes");
        }
    }

    // Goes along the references, without recursion since the length of a chain is the file's.
    std::vector<std::size_t> TargetsFirst() const {
        std::vector<std::size_t> order;
        std::vector<std::size_t> lengths(document_.objects.size() + document_.nodes.size(),
                                         kUnseen);
        std::vector<Step> chain;
        for (std::size_t start = 0; start < lengths.size(); ++start) {
            if (lengths[start] == kUnseen) Enter(start, chain, lengths);
            while (!chain.empty()) {
                Step& step = chain.back();
                const auto& references = ReferencesOf(step.item);
                if (step.next < references.size()) {
                    Follow(references[step.next++], chain, lengths);
                    continue;
                }
                lengths[step.item] = LengthFrom(step.item, lengths);
                order.push_back(step.item);
                chain.pop_back();
            }
        }
        return order;
    }

  private:
    struct Step {
        std::size_t item;
        std::size_t next;  // reference
    };

    // How many references lie behind one another from an item on, or how far it has been seen.
    static constexpr std::size_t kUnseen = static_cast<std::size_t>(-1);
    static constexpr std::size_t kOnChain = kUnseen - 1;

    static void Enter(std::size_t item, std::vector<Step>& chain,
                      std::vector<std::size_t>& lengths) {
        lengths[item] = kOnChain;
        chain.push_back({item, 0});
    }

    void Follow(const StoredReference& reference, std::vector<Step>& chain,
                std::vector<std::size_t>& lengths) const {
        if (reference.kind == StoredTarget::kNothing) return;
        const std::size_t target = PlaceOf(reference);
        if (lengths[target] == kOnChain)
            FailAt(path_, PositionOf(target), "a reference that leads back to itself");
        if (lengths[target] == kUnseen) Enter(target, chain, lengths);
    }

    std::size_t LengthFrom(std::size_t item, const std::vector<std::size_t>& lengths) const {
        std::size_t length = 0;
        for (const StoredReference& reference : ReferencesOf(item)) {
            if (reference.kind != StoredTarget::kNothing)
                length = std::max(length, lengths[PlaceOf(reference)] + 1);
        }
        if (length > kLongestReferenceChain)
            FailAt(path_, PositionOf(item), "too many references behind one another");
        return length;
    }

    template <class Item>
    void Require(bool holds, const Item& item, const char* what) const {
        if (!holds) FailAt(path_, item.position, what);
    }

    template <class Item>
    void CheckReferences(const Item& item) const {
        for (const StoredReference& reference : item.references)
            Require(IsInside(document_, reference), item,
                    "a reference to what the file does not hold");
    }

    std::size_t PlaceOf(const StoredReference& reference) const {
        return reference.kind == StoredTarget::kObject ? reference.index
                                                       : document_.objects.size() + reference.index;
    }
    bool IsObject(std::size_t item) const { return item < document_.objects.size(); }
    const StoredNode& NodeAt(std::size_t item) const {
        return document_.nodes[item - document_.objects.size()];
    }
    const std::vector<StoredReference>& ReferencesOf(std::size_t item) const {
        return IsObject(item) ? document_.objects[item].references : NodeAt(item).references;
    }
    std::uint64_t PositionOf(std::size_t item) const {
        return IsObject(item) ? document_.objects[item].position : NodeAt(item).position;
    }

    const SceneDocument& document_;
    const std::string& path_;
};

}  // namespace

void CheckDocument(const SceneDocument& document, const std::string& path) {
    const Checker checker(document, path);
    checker.CheckObjects();
    checker.CheckNodes();
    checker.CheckUtilities();
    checker.TargetsFirst();
}

std::vector<std::size_t> TargetsFirst(const SceneDocument& document) {
    return Checker(document, {}).TargetsFirst();
}

}  // namespace headless
