#include <algorithm>
#include <utility>

#include "recorder/watch/books.h"

namespace recorder::watching {
namespace {

using enum Operation;

constexpr std::size_t kMostEnded = 4096;  // nodes that are remembered behind their end

// Birth ----------------------------------------------------------------------------------------

void HangBelow(NodeMemory& node, NodeMemory* parent) {
    const bool hasEnded = node.life == Life::kEnded || (parent && parent->life == Life::kEnded);
    if (node.parent == parent || (hasEnded && parent)) return;
    if (node.parent) std::erase(node.parent->children, &node);
    node.parent = parent;
    if (parent) parent->children.push_back(&node);
}

// Where two owners bear one name the second one is told of when it gets its first node.
void CheckOwnerName(Books& books, const Place& place, ObjectId owner) {
    const OwnerMemory& own = books.owners[owner];
    if (own.nodes != 0 || own.name.empty()) return;
    for (const auto& [id, other] : books.owners)
        if (id != owner && other.nodes > 0 && other.name == own.name)
            books.found.Add(Rule::kOwnerNameTwice, place, own.name);
}

// An owner knows how many real nodes of its are there.
void Count(Books& books, NodeMemory& node) {
    const bool counts = !node.isSnapshot && node.owner != 0 && node.life == Life::kThere;
    if (counts == node.isCounted) return;
    node.isCounted = counts;
    if (counts)
        ++books.owners[node.owner].nodes;
    else
        --books.owners[node.owner].nodes;
}

// From here on it is another one.
void Bear(Books& books, NodeMemory& node, const Place& place, ObjectId owner, bool isSnapshot) {
    node.isSnapshot = true;
    Count(books, node);
    node.isSnapshot = isSnapshot;
    node.owner = owner;
    node.born = place;
}

void BearReal(Books& books, const Place& place, ObjectId id, ObjectId owner) {
    NodeMemory& node = NodeOf(books, id);
    Bear(books, node, place, owner, false);
    if (!books.groups.empty()) node.nest = books.nest;
    CheckOwnerName(books, place, owner);
    Count(books, node);
}

void SayCreation(Books& books, OpenCall& call, ValueReader& said) {
    const ObjectId owner = said.Object();
    const std::string_view name = said.Text();
    const ObjectId parent = said.Object();
    if (owner == 0) books.found.Add(Rule::kNullOwner, call.place, name);
    TellIfEnded(books, call.place, parent);
    if (call.place.operation == AdaptorInterface_CreateHelperNode)
        CheckMesh(books, call.place, name, said.Word());
    call.said = {owner, parent, said.Object()};
}

void Created(Books& books, OpenCall& call, ValueReader& answered) {
    const ObjectId id = answered.Object();
    if (id == 0) return;
    BearReal(books, call.place, id, call.said[0]);
    NodeMemory& node = NodeOf(books, id);
    node.hasListener = call.said[2] != 0;
    HangBelow(node, FindNode(books, call.said[1]));
}

void SayClaim(Books& books, OpenCall& call, ValueReader& said) {
    NodeMemory& node = *call.node;
    call.said[0] = said.Object();
    if (call.said[0] == 0) books.found.Add(Rule::kNullOwner, call.place, node.name);
    if (!node.isSnapshot && node.life != Life::kUnsure)
        books.found.Add(Rule::kClaimOfRealNode, call.place, node.name);
}

void Claimed(Books& books, OpenCall& call, ValueReader& answered) {
    const ObjectId id = answered.Object();
    if (id != 0) BearReal(books, call.place, id, call.said[0]);
}

void Lent(Books& books, OpenCall& call, ValueReader& answered) {
    BearLent(books, call.place, answered.Object(), call.object);
}

void LentSome(Books& books, OpenCall& call, ValueReader& answered) {
    for (const ObjectId id : ListOf(answered))
        BearLent(books, call.place, id, 0);
}

// The real node that stands for the same scene node: of its owner, the only one of its name.
NodeMemory* RealNodeOf(Books& books, const NodeMemory& lent) {
    NodeMemory* found = nullptr;
    for (auto& [id, node] : books.nodes) {
        const bool isIt = !node.isSnapshot && node.life == Life::kThere &&
                          node.owner == lent.owner && node.name == lent.name;
        if (isIt && found) return nullptr;
        if (isIt) found = &node;
    }
    return found;
}

void ParentGiven(Books& books, OpenCall& call, ValueReader& answered) {
    const ObjectId id = answered.Object();
    NodeMemory& node = NodeOf(books, call.object);
    BearLent(books, call.place, id, call.object);
    if (id == 0) return HangBelow(node, nullptr);
    const NodeMemory& parent = NodeOf(books, id);
    if (node.parent && node.parent->name == parent.name && node.parent->owner == parent.owner)
        return;
    HangBelow(node, parent.owner == 0 ? nullptr : RealNodeOf(books, parent));
}

// The adaptor's list has the real nodes of an owner that are there, and no others.
void SayOwner(Books&, OpenCall& call, ValueReader& said) {
    call.said[0] = said.Object();
}

void NodesGiven(Books& books, OpenCall& call, ValueReader& answered) {
    const auto given = ListOf(answered);
    for (auto& [id, node] : books.nodes) {
        const bool isOwned = !node.isSnapshot && node.owner == call.said[0];
        if (isOwned && node.life == Life::kThere && std::ranges::find(given, id) == given.end())
            SetLife(books, node, Life::kUnsure);
    }
    for (const ObjectId id : given)
        SetLife(books, NodeOf(books, id), Life::kThere);
}

void NodeFound(Books& books, OpenCall&, ValueReader& answered) {
    const ObjectId id = answered.Object();
    if (id != 0) SetLife(books, NodeOf(books, id), Life::kThere);
}

// End ------------------------------------------------------------------------------------------

// Snapshots and all go with the oldest node that has ended.
void ForgetOldest(Books& books) {
    const ObjectId oldest = books.ended[books.oldestEnded];
    for (const ObjectId snapshot : books.nodes[oldest].snapshots)
        books.snapshots.Forget(snapshot);
    books.nodes.Forget(oldest);
}

void Remember(Books& books, ObjectId ended) {
    if (books.ended.size() < kMostEnded) return books.ended.push_back(ended);
    ForgetOldest(books);
    books.ended[books.oldestEnded] = ended;
    books.oldestEnded = (books.oldestEnded + 1) % kMostEnded;
}

void End(Books& books, NodeMemory& node) {
    if (node.life == Life::kEnded) return;
    TellLeftSnapshots(books, node);
    HangBelow(node, nullptr);
    while (!node.children.empty())
        HangBelow(*node.children.back(), nullptr);
    std::erase(books.overtaken, &node);
    SetLife(books, node, Life::kEnded);
    Remember(books, node.id);
}

// Most are given back to themselves.
void ReleaseNode(Books& books, OpenCall& call, ValueReader& said) {
    const ObjectId id = said.Object();
    if (id == 0) return;
    NodeMemory& node = NodeOf(books, id);
    if (node.life == Life::kEnded)
        return books.found.Add(Rule::kReleasedTwice, call.place, node.name);
    if (TellIfEnded(books, call.place, call.object)) return;
    if (!node.isSnapshot && node.life != Life::kUnsure)
        books.found.Add(Rule::kRealNodeReleased, call.place, node.name);
    End(books, node);
}

void Destroy(Books& books, OpenCall& call, ValueReader&) {
    End(books, *call.node);
}

void Unclaim(Books& books, OpenCall& call, ValueReader&) {
    NodeMemory& node = *call.node;
    if (node.isSnapshot) return;
    Bear(books, node, call.place, 0, true);
    node.source = 0;
}

// A snapshot node on another owner's node stays as it was.
void DeleteLent(Books& books, NodeMemory& node) {
    const NodeMemory* const source = FindNode(books, node.source);
    if (node.owner == 0 || (source && source->owner == node.owner))
        End(books, node);
    else
        node.life = Life::kUnsure;
}

bool IsUndoing(const Books& books) {
    return std::ranges::any_of(books.calls, [](const OpenCall& call) {
        return call.place.operation == CUndo_Undo || call.place.operation == CUndo_Redo ||
               call.place.operation == NodeListener_OnNodeRemoved ||
               call.place.operation == NodeListener_OnNodeRestored;
    });
}

void DeleteReal(Books& books, NodeMemory& node, const Place& place) {
    const bool isInGroup = !books.groups.empty();
    if (node.life == Life::kInRecord) {
        if (isInGroup && node.deletedIn == books.nest && !books.isNestBroken)
            books.found.Add(Rule::kDeletedTwice, place, node.name);
        return;
    }
    if (node.life == Life::kUnsure) return;
    if (!isInGroup && books.owner43 != 0 && node.owner == books.owner43)
        books.found.Add(Rule::kDeletionOutsideGroup, place, node.name);
    if (!isInGroup) return End(books, node);
    node.nest = node.deletedIn = books.nest;
    node.isRemovalTold = false;
    const bool isSure = !books.isNestBroken && !IsUndoing(books);
    SetLife(books, node, isSure ? Life::kInRecord : Life::kUnsure);
}

void Delete(Books& books, OpenCall& call, ValueReader&) {
    NodeMemory& node = *call.node;
    if (node.isSnapshot)
        DeleteLent(books, node);
    else
        DeleteReal(books, node, call.place);
}

// Outside a group all records go. What is in one has ended if it is sure that it still was.
void Flushed(Books& books, OpenCall&, ValueReader&) {
    for (auto& [id, node] : books.nodes) {
        if (node.life != Life::kInRecord) continue;
        if (node.isRemovalTold && books.groups.empty())
            End(books, node);
        else
            node.life = Life::kUnsure;
    }
}

// The rest -------------------------------------------------------------------------------------

void Removed(Books& books, OpenCall&, ValueReader& said) {
    NodeMemory& node = NodeOf(books, said.Object());
    node.hasListener = node.isRemovalTold = true;
    if (node.life != Life::kThere) return;
    node.deletedIn = 0;
    SetLife(books, node, Life::kInRecord);
}

void Restored(Books& books, OpenCall&, ValueReader& said) {
    NodeMemory& node = NodeOf(books, said.Object());
    node.hasListener = true;
    SetLife(books, node, Life::kThere);
}

void SetParent(Books& books, OpenCall& call, ValueReader& said) {
    const ObjectId parent = said.Object();
    if (TellIfEnded(books, call.place, parent)) return;
    NodeMemory* const known = FindNode(books, parent);
    HangBelow(*call.node, known && known->isSnapshot ? nullptr : known);
}

void SayOtherNode(Books& books, OpenCall& call, ValueReader& said) {
    TellIfEnded(books, call.place, said.Object());
}

void DeleteAnimation(Books& books, OpenCall& call, ValueReader& said) {
    NodeMemory& node = *call.node;
    const double seconds = said.Number();
    if (seconds != seconds) CheckTime(books, call.place, node.name, seconds);
    node.transform = node.field = node.target = {};
}

std::vector<const NodeMemory*> InOrder(const Books& books) {
    std::vector<const NodeMemory*> nodes;
    for (const auto& [id, node] : books.nodes)
        nodes.push_back(&node);
    std::ranges::sort(nodes, {},
                      [](const NodeMemory* node) { return std::pair(node->born.call, node->id); });
    return nodes;
}

}  // namespace

std::span<const Handler> NodeHandlers() {
    static constexpr Handler kHandlers[] = {
        {AdaptorInterface_CreateLensNode, SayCreation, Created},
        {AdaptorInterface_CreateHelperNode, SayCreation, Created},
        {AdaptorInterface_FindNode, nullptr, NodeFound},
        {AdaptorInterface_GetNodes, SayOwner, NodesGiven},
        {AdaptorInterface_ClaimNodes, nullptr, LentSome},
        {AdaptorInterface_MergeModels, nullptr, LentSome},
        {AdaptorInterface_FlushUndoBuffer, nullptr, Flushed},
        {CNode_GetParent, nullptr, ParentGiven},
        {CNode_GetChild, nullptr, Lent},
        {CNode_ReleaseNode, ReleaseNode},
        {CoreNode_Destroy, Destroy},
        {CoreNode_Claim, SayClaim, Claimed},
        {CoreNode_Unclaim, Unclaim},
        {CoreNode_IsSameNode, SayOtherNode},
        {CoreNode_SetParent, SetParent},
        {CoreNode_DeleteAnimationFrom, DeleteAnimation},
        {CoreNode_Delete, Delete},
        {CoreNode_Clone, nullptr, Lent},
        {NodeListener_OnNodeRemoved, Removed},
        {NodeListener_OnNodeRestored, Restored},
    };
    return kHandlers;
}

NodeMemory& NodeOf(Books& books, ObjectId id) {
    NodeMemory& node = books.nodes[id];
    node.id = id;
    return node;
}

NodeMemory* FindNode(Books& books, ObjectId id) {
    return books.nodes.Find(id);
}

void SetLife(Books& books, NodeMemory& node, Life life) {
    if (node.life == Life::kEnded) return;
    node.life = life;
    Count(books, node);
}

void KnowNode(Books& books, ObjectId id, const ObjectFacts& facts) {
    NodeMemory& node = NodeOf(books, id);
    node.name = facts.name.empty() ? facts.hostName : facts.name;
    if (node.born.call != 0) return;
    node.isSnapshot = facts.isSnapshot;
    node.owner = facts.of;
}

void BearLent(Books& books, const Place& place, ObjectId id, ObjectId source) {
    if (id == 0) return;
    NodeMemory& node = NodeOf(books, id);
    Bear(books, node, place, node.owner, true);
    node.source = source;
}

void ForsakeNest(Books& books) {
    for (auto& [id, node] : books.nodes)
        if (node.nest == books.nest && !node.isSnapshot) SetLife(books, node, Life::kUnsure);
}

bool TellIfEnded(Books& books, const Place& place, ObjectId id) {
    const NodeMemory* const node = FindNode(books, id);
    if (!node || node->life != Life::kEnded) return false;
    books.found.Add(Rule::kNodeAfterEnd, place, node->name);
    return true;
}

void TellLeftNodes(Books& books) {
    for (const NodeMemory* const node : InOrder(books)) {
        if (node->life == Life::kEnded || node->life == Life::kUnsure) continue;
        TellLeftSnapshots(books, *node);
        if (node->life == Life::kThere && node->born.call != 0)
            books.found.Add(node->isSnapshot ? Rule::kSnapshotNodeKept : Rule::kNodeKept,
                            node->born, node->name);
        if (node->life == Life::kInRecord && node->deletedIn != 0)
            books.found.Add(Rule::kOwnerInUndo, node->born, node->name);
    }
}

// The host empties its undo buffer with the scene.
void TellNodesKeptOverReset(Books& books) {
    for (const NodeMemory* const node : InOrder(books))
        if (node->life == Life::kThere && !node->isSnapshot && node->born.call != 0)
            books.found.Add(Rule::kNodeKeptOverReset, node->born, node->name);
    for (auto& [id, node] : books.nodes)
        if (!node.isSnapshot) SetLife(books, node, Life::kUnsure);
}

}  // namespace recorder::watching
