#include <algorithm>
#include <utility>

#include "recorder/watch/books.h"

namespace recorder::watching {
namespace {

using enum Operation;

// Made, claimed, lent --------------------------------------------------------------------------

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
    ++books.kinship;  // a merge can have replaced nodes
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
    const bool isSame =
        node.parent && node.parent->name == parent.name && node.parent->owner == parent.owner;
    if (isSame && node.hungAt == 0) return;
    if (!isSame) HangBelow(node, parent.owner == 0 ? nullptr : RealNodeOf(books, parent));
    node.hungAt = books.kinship;
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

// Given back, deleted --------------------------------------------------------------------------

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

void Undone(Books& books, OpenCall&, ValueReader&) {
    ++books.kinship;
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

// Told, hung elsewhere, cut --------------------------------------------------------------------

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
    HangBelow(*call.node, known && known->isSnapshot ? nullptr : known, books.kinship);
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

}  // namespace

std::span<const Handler> NodeHandlers() {
    static constexpr Handler kHandlers[] = {
        {AdaptorInterface_CreateLensNode, SayCreation, Created},
        {AdaptorInterface_CreateHelperNode, SayCreation, Created},
        {AdaptorInterface_FindNode, nullptr, NodeFound},
        {AdaptorInterface_GetNodes, SayOwner, NodesGiven},
        {AdaptorInterface_ClaimNodes, nullptr, LentSome},
        {AdaptorInterface_MergeModels, nullptr, LentSome},
        {AdaptorInterface_PerformUndo, nullptr, Undone},
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

}  // namespace recorder::watching
