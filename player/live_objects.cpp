#include "player/live_objects.h"

#include <utility>

#include "player/played_objects.h"

namespace player {
namespace {

// No tape has as many objects.
constexpr std::uint64_t kUnnamed = std::uint64_t{1} << 55;

bool IsUnnamed(ObjectId id) {
    return (id & kUnnamed) != 0;
}

// As the type that stands for the kind, and under the pointer of that.
template <class Interface, class Type>
std::pair<std::shared_ptr<void>, void*> As(std::shared_ptr<Type> object) {
    Interface* const pointer = object.get();
    return {std::move(object), pointer};
}

}  // namespace

LiveObjects::LiveObjects(TVL::AdaptorInterface& adaptor, PlayedCore& core)
    : adaptor_(adaptor), core_(core), listener_(std::make_unique<PlayedListener>(0, core, *this)) {}

LiveObjects::~LiveObjects() = default;

TVL::Util::MessageNode* LiveObjects::FindMessageNode(ObjectId id) {
    const ObjectKind kind = recorder::KindOf(id);
    const bool isOne =
        kind == ObjectKind::kCoreMessageNode || kind == ObjectKind::kAdaptorMessageNode;
    return isOne ? static_cast<TVL::Util::MessageNode*>(Find(id, kind)) : nullptr;
}

void* LiveObjects::Find(ObjectId id, ObjectKind kind) {
    if (recorder::KindOf(id) != kind) return nullptr;
    const auto found = objects_.find(id);
    return found != objects_.end() ? found->second : Make(id);
}

void* LiveObjects::Make(ObjectId id) {
    std::pair<std::shared_ptr<void>, void*> made;
    switch (recorder::KindOf(id)) {
        case ObjectKind::kCore:
            made = As<CoreInterface>(std::make_shared<PlayedInterface>(id, core_, *this));
            break;
        case ObjectKind::kOwner:
            made =
                As<TVL::CoreElement>(std::make_shared<PlayedOwner>(id, core_, *this, named_[id]));
            break;
        case ObjectKind::kChunk:
            made = As<TVL::CUndo>(std::make_shared<PlayedChunk>(id, core_, *this));
            break;
        case ObjectKind::kCoreMessageNode:
            made = As<TVL::Util::MessageNode>(
                std::make_shared<PlayedMessageNode>(id, core_, *this, named_[id].name));
            break;
        case ObjectKind::kLog:
            made = As<TVL::Log>(std::make_shared<TVL::Log>());
            break;
        case ObjectKind::kRegistry:
            made = As<TVL::ErrorCode>(std::make_shared<TVL::ErrorCode>());
            break;
        default:
            return nullptr;
    }
    made_[id] = std::move(made.first);
    Bind(id, made.second);
    return made.second;
}

void LiveObjects::Bind(ObjectId id, void* object) {
    ObjectId& here = ids_[{recorder::KindOf(id), object}];
    objects_.erase(here);
    if (auto lent = lent_.extract(here)) {
        lent_.erase(id);
        lent.key() = id;
        lent_.insert(std::move(lent));
    }
    here = id;
    objects_[id] = object;
}

ObjectId LiveObjects::IdOf(ObjectKind kind, void* object) {
    if (!object) return 0;
    const auto known = ids_.find({kind, object});
    if (known != ids_.end()) return known->second;
    const ObjectId id = recorder::MakeObjectId(kind, kUnnamed | ++unnamed_);
    Bind(id, object);
    auto* const node = kind == ObjectKind::kNode ? static_cast<TVL::CoreNode*>(object) : nullptr;
    if (node && node->IsSnapshot()) snapshotNodes_.insert(node);
    return id;
}

void LiveObjects::ReleaseNodes() {
    for (TVL::CoreNode* const node : std::exchange(snapshotNodes_, {}))
        node->ReleaseNode(node);
}

bool LiveObjects::Match(ObjectId onTape, ObjectId here) {
    if (onTape == here) return true;
    const ObjectKind kind = recorder::KindOf(onTape);
    if (onTape == 0 || here == 0 || kind != recorder::KindOf(here)) return false;
    const auto object = objects_.find(here);
    if (object == objects_.end() || IsUnnamed(onTape)) return false;
    const auto bound = objects_.find(onTape);
    if (bound != objects_.end()) {
        if (!recorder::IsSnapshot(kind)) return false;
        ids_.erase({kind, bound->second});
    }
    Bind(onTape, object->second);
    return true;
}

void LiveObjects::End(ObjectId id) {
    const auto found = objects_.find(id);
    if (found == objects_.end()) return;
    ids_.erase({recorder::KindOf(id), found->second});
    if (recorder::KindOf(id) == ObjectKind::kNode)
        snapshotNodes_.erase(static_cast<TVL::CoreNode*>(found->second));
    objects_.erase(found);
    const auto made = made_.extract(id);  // and ends here
    if (recorder::KindOf(id) != ObjectKind::kNode) return;
    std::vector<ObjectId> gone;
    for (const auto& [snapshot, lent] : lent_)
        if (lent.node == id && !lent.isOut) gone.push_back(snapshot);
    for (const ObjectId snapshot : gone) {
        lent_.erase(snapshot);
        End(snapshot);
    }
}

void LiveObjects::TakeBack(ObjectId snapshot) {
    const auto lent = lent_.find(snapshot);
    if (lent != lent_.end()) lent->second.isOut = false;
}

void LiveObjects::Know(ObjectId id, std::string_view name) {
    const ObjectKind kind = recorder::KindOf(id);
    if (kind != ObjectKind::kOwner && kind != ObjectKind::kCoreMessageNode) return;
    named_[id].name = name;
    const bool isMessageNode = kind == ObjectKind::kCoreMessageNode && objects_.contains(id);
    if (isMessageNode) FindMessageNode(id)->SetName(named_[id].name);
}

}  // namespace player
