#include <algorithm>
#include <utility>

#include "recorder/watch/books.h"

// How a node comes, what it hangs below, and how it ends.
namespace recorder::watching {
namespace {

constexpr std::size_t kMostEnded = 4096;  // nodes that are remembered behind their end

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

// That the user has undone its creation is told to a node's listener alone.
bool IsSurelyThere(const NodeMemory& node) {
    const bool canBeUndone = !node.isSnapshot && node.nest != 0;
    const bool hears = node.hasListener && !node.wasDeaf;
    return node.life == Life::kThere && node.born.call != 0 && (!canBeUndone || hears);
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

NodeMemory& NodeOf(Books& books, ObjectId id) {
    NodeMemory& node = books.nodes[id];
    node.id = id;
    return node;
}

NodeMemory* FindNode(Books& books, ObjectId id) {
    return books.nodes.Find(id);
}

void HangBelow(NodeMemory& node, NodeMemory* parent, std::uint64_t kinship) {
    if (node.parent != parent || node.hungAt != 0) node.hungAt = kinship;
    const bool hasEnded = node.life == Life::kEnded || (parent && parent->life == Life::kEnded);
    if (node.parent == parent || (hasEnded && parent)) return;
    if (node.parent) std::erase(node.parent->children, &node);
    node.parent = parent;
    if (parent) parent->children.push_back(&node);
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
    Count(books, node);
}

void BearLent(Books& books, const Place& place, ObjectId id, ObjectId source) {
    if (id == 0) return;
    NodeMemory& node = NodeOf(books, id);
    Bear(books, node, place, node.owner, true);
    node.source = source;
}

void SetLife(Books& books, NodeMemory& node, Life life) {
    if (node.life == Life::kEnded) return;
    node.life = life;
    Count(books, node);
}

void KnowNode(Books& books, ObjectId id, const ObjectFacts& facts) {
    NodeMemory& node = NodeOf(books, id);
    node.name = facts.name.empty() ? facts.hostName : facts.name;
    if (node.born.call != 0 || node.isCounted) return;
    node.isSnapshot = facts.isSnapshot;
    node.owner = facts.of;
}

void KnowListener(Books& books, ObjectId id, bool isThere) {
    NodeMemory& node = NodeOf(books, id);
    node.wasDeaf |= !isThere || !node.hasListener;
    node.hasListener = isThere;
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
        if (IsSurelyThere(*node))
            books.found.Add(node->isSnapshot ? Rule::kSnapshotNodeKept : Rule::kNodeKept,
                            node->born, node->name);
        if (node->life == Life::kInRecord && node->deletedIn != 0)
            books.found.Add(Rule::kOwnerInUndo, node->born, node->name);
    }
}

// The host empties its undo buffer with the scene.
void TellNodesKeptOverReset(Books& books) {
    for (const NodeMemory* const node : InOrder(books))
        if (IsSurelyThere(*node) && !node->isSnapshot)
            books.found.Add(Rule::kNodeKeptOverReset, node->born, node->name);
    for (auto& [id, node] : books.nodes)
        if (!node.isSnapshot) SetLife(books, node, Life::kUnsure);
}

}  // namespace recorder::watching
