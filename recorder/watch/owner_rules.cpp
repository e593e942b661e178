#include "recorder/watch/books.h"
#include "tvl/ids.h"

namespace recorder::watching {
namespace {

using enum Operation;

// Children of a tree's root.
std::uint64_t CountChildren(ValueReader& tree) {
    tree.Word();
    tree.Whole();
    tree.Text();
    for (std::uint64_t texts = 2 * tree.Word(); texts > 0 && tree.IsGood(); --texts)
        tree.Text();
    return tree.Word();
}

// Of nodes -------------------------------------------------------------------------------------

void SayNodeExtension(Books& books, OpenCall& call, ValueReader& said) {
    call.said[0] = static_cast<std::uint64_t>(said.Whole());
    if (said.Letter() == 'o') TellIfEnded(books, call.place, said.Object());
}

void NodeExtensionDone(Books& books, OpenCall& call, ValueReader& answered) {
    const char letter = answered.Letter();
    const std::uint64_t result = letter == 'i' || letter == 'o' ? answered.Word() : 0;
    switch (call.said[0]) {
        case TVL::kBeginSelection:
            if (result != 0) books.selections.push_back({call.place, books.go, {}, {}, false});
            break;
        case TVL::kEndSelection:
            books.selections.clear();
            break;
        case TVL::kCloneBelow:
            if (letter == 'o') BearLent(books, call.place, result, call.object);
            break;
        default:
            break;
    }
}

// Of owners ------------------------------------------------------------------------------------

void SayOwnerExtension(Books& books, OpenCall& call, ValueReader& said) {
    const std::int32_t id = said.Whole();
    call.said[0] = static_cast<std::uint64_t>(id);
    if (id == TVL::kSceneBeingSaved && said.Letter() == 't') call.said[1] = CountChildren(said);
    if (id != TVL::kNodesBeingDeleted) return;
    books.owner43 = call.object;
    books.call43 = call.place.call;
}

// Of stored parts with one name the first alone is loaded.
void CheckOwnerName(Books& books, const Place& place, ObjectId owner) {
    const std::string& name = books.owners[owner].name;
    for (const auto& [id, other] : books.owners)
        if (id != owner && other.nodes > 0 && other.hasGivenState && other.name == name &&
            !name.empty())
            books.found.Add(Rule::kOwnerNameTwice, place, name);
}

void OwnerExtensionDone(Books& books, OpenCall& call, ValueReader& answered) {
    if (call.said[0] != TVL::kSceneBeingSaved) return;
    answered.Skip('x');
    if (answered.Letter() != 't') return;
    OwnerMemory& owner = books.owners[call.object];
    const bool hasGiven = CountChildren(answered) > call.said[1];
    if (!hasGiven && owner.hasGivenState && owner.nodes > 0)
        books.found.Add(Rule::kStateEmpty, call.place, owner.name);
    owner.hasGivenState |= hasGiven;
    if (hasGiven) CheckOwnerName(books, call.place, call.object);
}

void SayExtension(Books& books, OpenCall& call, ValueReader& said) {
    if (KindOf(call.object) == ObjectKind::kOwner) SayOwnerExtension(books, call, said);
    if (KindOf(call.object) == ObjectKind::kNode) SayNodeExtension(books, call, said);
}

void ExtensionDone(Books& books, OpenCall& call, ValueReader& answered) {
    if (KindOf(call.object) == ObjectKind::kOwner) OwnerExtensionDone(books, call, answered);
    if (KindOf(call.object) == ObjectKind::kNode) NodeExtensionDone(books, call, answered);
}

// An owner is asked for 43 alone when the user deletes nodes of it.
void SayHas(Books& books, OpenCall& call, ValueReader& said) {
    call.said[0] = static_cast<std::uint64_t>(said.Whole());
    const bool isDeletion =
        KindOf(call.object) == ObjectKind::kOwner && call.said[0] == TVL::kNodesBeingDeleted;
    if (isDeletion && books.calls.size() == 1) TellOpenInTheWay(books, call.place);
}

void HasTold(Books& books, OpenCall& call, ValueReader& answered) {
    const bool isDeletion =
        KindOf(call.object) == ObjectKind::kOwner && call.said[0] == TVL::kNodesBeingDeleted;
    if (!isDeletion || answered.Truth()) return;
    for (const auto& [id, node] : books.nodes)
        if (node.owner == call.object && !node.isSnapshot && node.life == Life::kThere &&
            node.hasListener)
            return books.found.Add(Rule::kDeletionNotHeard, call.place,
                                   books.owners[call.object].name);
}

void CoreStateGiven(Books& books, OpenCall& call, ValueReader& answered) {
    const bool hasGiven = CountChildren(answered) > 0;
    bool hasNodes = false;
    for (const auto& [id, owner] : books.owners)
        hasNodes |= owner.nodes > 0;
    if (!hasGiven && books.hasGivenCoreState && hasNodes)
        books.found.Add(Rule::kStateEmpty, call.place, {});
    books.hasGivenCoreState |= hasGiven;
}

}  // namespace

std::span<const Handler> OwnerHandlers() {
    static constexpr Handler kHandlers[] = {
        {CExtendable_HandleExtension, SayExtension, ExtensionDone},
        {CExtendable_HasExtension, SayHas, HasTold},
        {CoreInterface_GetCoreState, nullptr, CoreStateGiven},
    };
    return kHandlers;
}

}  // namespace recorder::watching
