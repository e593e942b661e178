#include "player/recovery/tape_nodes.h"

#include "tvl/ids.h"

namespace player {

using recorder::ValueReader;

void TapeNode::AddHostName(std::string_view hostName) {
    std::erase(hostNames, hostName);
    hostNames.emplace(hostNames.begin(), hostName);
}

TapeNode TapeNodes::Find(ObjectId id) const {
    const auto found = nodes_.find(id);
    TapeNode node = found == nodes_.end() ? TapeNode() : found->second;
    node.id = id;
    return node;
}

bool TapeNodes::IsReal(ObjectId id) const {
    const auto found = nodes_.find(id);
    return found != nodes_.end() && found->second.isReal;
}

Lent TapeNodes::LentAs(ObjectId snapshot) const {
    const auto found = lent_.find(snapshot);
    return found == lent_.end() ? Lent() : found->second;
}

void TapeNodes::SeeCall(const Record& call) {
    const ObjectId on = call.head.object;
    ValueReader said(call);
    switch (call.head.operation) {
        case Operation::AdaptorInterface_CreateLensNode:
        case Operation::AdaptorInterface_CreateHelperNode:
        case Operation::CoreNode_Claim:
            SeeMade(call);
            break;
        case Operation::AdaptorInterface_ClaimNodes:
            SeeFound(call);
            break;
        case Operation::CoreNode_Unclaim:
        case Operation::CoreNode_Destroy:
            Forget(on);
            break;
        case Operation::CoreNode_SetName:
            nodes_[on].AddHostName(said.Text());
            break;
        case Operation::CExtendable_HandleExtension:
            if (said.Whole() == TVL::kStopRecording) stopped_.insert(on);
            break;
        case Operation::CoreNode_AcquireSnapshot:
        case Operation::CoreNode_AcquireMeshSnapshot:
        case Operation::CoreNode_AcquireLensSnapshot:
        case Operation::CoreNode_AcquireShapeSnapshot:
            lent_[calls_.Given(call)] = {on, said.Number()};
            break;
        case Operation::CoreNode_AcquireHelperSnapshot:
            lent_[calls_.Given(call)] = {on, 0};
            break;
        default:
            break;
    }
    lent_.erase(0);  // what gave none
}

void TapeNodes::SeeMade(const Record& call) {
    const ObjectId given = calls_.Given(call);
    if (given == 0) return;
    ValueReader said(call);
    const TapeNode from = Find(call.head.object);  // none if it is new
    TapeNode& node = nodes_[given];
    node.storedPlugin = from.storedPlugin;
    node.storedName = from.storedName;
    node.owner = said.Object();
    node.name = said.Text();
    node.isReal = true;
}

// By which plug-in and name a stored node was asked for.
void TapeNodes::SeeFound(const Record& call) {
    ValueReader said(call);
    const std::string plugin(said.Text());
    const XMLNode info = said.Tree();
    const std::vector<ObjectId> found = calls_.NewNodes(call);
    std::int32_t index = 0;
    for (const ObjectId id : found) {
        const XMLNode& entry = info.Child("node", index++);
        const auto name = entry.attributes.find("name");
        if (id == 0) continue;
        nodes_[id].storedPlugin = plugin;
        nodes_[id].storedName = name == entry.attributes.end() ? "" : name->second;
    }
}

void TapeNodes::SeeFacts(const Record& record) {
    const recorder::ObjectFacts facts = ValueReader(record).Facts();
    const ObjectId id = record.head.object;
    const ObjectKind kind = recorder::KindOf(id);
    if (recorder::IsSnapshot(kind)) lent_[id] = {facts.of, facts.seconds};
    if (kind != ObjectKind::kNode) return;
    TapeNode& node = nodes_[id];
    node.owner = facts.of;
    node.name = facts.name;
    // While a deletion is undone there is no host node yet.
    if (!facts.hostName.empty()) node.AddHostName(facts.hostName);
    node.isReal = !facts.isSnapshot;
}

}  // namespace player
