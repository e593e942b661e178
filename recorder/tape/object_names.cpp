#include "recorder/tape/object_names.h"

#include <array>

namespace recorder {
namespace {

constexpr auto kKinds = std::to_array<std::string_view>(
    {"object", "adaptor", "Core", "node", "snapshot", "helper snapshot", "lens snapshot",
     "mesh snapshot", "shape snapshot", "owner", "listener", "chunk", "message node of the Core",
     "message node", "log", "registry"});

// Of which a session has one.
bool IsAlone(ObjectKind kind) {
    return kind == ObjectKind::kAdaptor || kind == ObjectKind::kCore;
}

}  // namespace

void ObjectNames::Take(const Record& record) {
    if (record.head.kind == RecordKind::kObject)
        TakeFacts(record);
    else if (record.head.kind == RecordKind::kAnswer)
        TakeAnswer(record);
    else if (record.Is(RecordKind::kCall, Operation::CoreNode_SetName))
        names_[record.head.object] = ValueReader(record).Text();
}

void ObjectNames::TakeFacts(const Record& record) {
    const ObjectFacts facts = ValueReader(record).Facts();
    const ObjectId object = record.head.object;
    if (IsSnapshot(KindOf(object))) nodes_[object] = facts.of;
    const std::string_view name = facts.name.empty() ? facts.hostName : facts.name;
    if (!name.empty()) names_[object] = name;
}

// A node's answer that is a snapshot is one of it.
void ObjectNames::TakeAnswer(const Record& record) {
    if (RowOf(record.head.operation).answered != "o") return;
    const ObjectId answer = ValueReader(record).Object();
    if (IsSnapshot(KindOf(answer))) nodes_[answer] = record.head.object;
}

std::string ObjectNames::ByNumber(ObjectId object) {
    const auto kind = static_cast<std::size_t>(KindOf(object));
    const std::string word(kKinds[kind < kKinds.size() ? kind : 0]);
    return IsAlone(KindOf(object)) ? word : word + ' ' + std::to_string(NumberOf(object));
}

ObjectId ObjectNames::NodeOf(ObjectId object) const {
    const auto node = nodes_.find(object);
    return node == nodes_.end() ? object : node->second;
}

std::string ObjectNames::NameOf(ObjectId object) const {
    if (object == 0) return "nothing";
    const auto name = names_.find(object);
    if (name != names_.end()) return name->second;
    const ObjectId node = NodeOf(object);
    return node == object ? ByNumber(object) : ByNumber(object) + " of " + NameOf(node);
}

}  // namespace recorder
