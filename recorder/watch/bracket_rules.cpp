#include <algorithm>

#include "recorder/watch/books.h"
#include "tvl/message.h"

namespace recorder::watching {
namespace {

using enum Operation;

Open OpenNow(const Books& books, const OpenCall& call) {
    return {call.place, books.go, books.calls.front().place.operation, {}, false};
}

// Nothing has begun where the status is one of failure.
void DropIfRefused(std::vector<Open>& list, const OpenCall& call, ValueReader& answered) {
    if (answered.Whole() == 0) return;
    std::erase_if(list, [&](const Open& open) { return open.place.call == call.place.call; });
}

void TellOnce(Books& books, Open& open, const Place& place) {
    if (open.isTold) return;
    open.isTold = true;
    books.found.Add(Rule::kOpenWhileUserWorks, open.place, open.name, [&] {
        return "in the way at " + std::string(RowOf(place.operation).name) + ", call " +
               std::to_string(place.call);
    });
}

// A group that the same road of the adaptor's begins once more was forgotten the last time.
void TellIfForgotten(Books& books, Open& now) {
    if (books.calls.front().isByCore) return;
    for (Open& open : books.groups) {
        if (open.go == now.go || open.name != now.name || open.road != now.road) continue;
        TellOnce(books, open, now.place);
        now.isTold = true;
    }
}

void BeginGroup(Books& books, OpenCall& call, ValueReader& said) {
    Open now = OpenNow(books, call);
    now.name = said.Text();
    TellIfForgotten(books, now);
    books.groups.push_back(std::move(now));
}

void GroupBegun(Books& books, OpenCall& call, ValueReader& answered) {
    DropIfRefused(books.groups, call, answered);
}

void EndGroup(Books& books, OpenCall& call, ValueReader&) {
    if (books.groups.empty()) {
        books.found.Add(Rule::kGroupNotBegun, call.place, {});
        return;
    }
    const bool isCancel = call.place.operation == AdaptorInterface_CancelUndoGroup;
    if (isCancel) books.isNestBroken = true;
    if (isCancel) ++books.kinship;
    const bool isUsersStep = books.owner43 != 0 && !books.hasStopEndedGroup &&
                             books.groups.front().place.call > books.call43;
    if (isCancel && isUsersStep)
        books.found.Add(Rule::kCancelInDeletion, call.place, books.groups.back().name);
    books.groups.pop_back();
    if (!books.groups.empty()) return;
    if (books.isNestBroken) ForsakeNest(books);
    books.isNestBroken = false;
    ++books.nest;
}

void AddChunk(Books& books, OpenCall& call, ValueReader& said) {
    call.said[0] = said.Object();
    call.said[1] = books.groups.size();
}

void ChunkAdded(Books& books, OpenCall& call, ValueReader& answered) {
    if (answered.Whole() != 0 && call.said[0] != 0 && call.said[1] == 0)
        books.found.Add(Rule::kChunkOutsideGroup, call.place, {});
}

void BeginRecording(Books& books, OpenCall& call, ValueReader&) {
    ++books.recording;
    books.recordings.push_back(OpenNow(books, call));
}

void RecordingBegun(Books& books, OpenCall& call, ValueReader& answered) {
    DropIfRefused(books.recordings, call, answered);
}

void EndRecording(Books& books, OpenCall& call, ValueReader&) {
    if (books.recordings.empty()) {
        books.found.Add(Rule::kRecordingNotBegun, call.place, {});
        return;
    }
    books.recordings.pop_back();
    if (!books.recordings.empty()) return;
    TellOvertaken(books);
    TellMeshesOut(books, call.place);
}

void RequestFocus(Books& books, OpenCall& call, ValueReader&) {
    books.focuses.push_back(OpenNow(books, call));
}

void RestoreFocus(Books& books, OpenCall& call, ValueReader&) {
    if (books.focuses.empty())
        books.found.Add(Rule::kFocusNotTaken, call.place, {});
    else
        books.focuses.pop_back();
}

void SayPlaced(Books&, OpenCall& call, ValueReader& said) {
    call.said[0] = said.Object();
}

template <Place Books::*kPlaced>
void Placed(Books& books, OpenCall& call, ValueReader& answered) {
    if (answered.Whole() == 0 && call.said[0] != 0) books.*kPlaced = call.place;
}

template <Place Books::*kPlaced>
void Cleared(Books& books, OpenCall&, ValueReader& answered) {
    if (answered.Whole() == 0) books.*kPlaced = {};
}

void ButtonGiven(Books& books, OpenCall& call, ValueReader& answered) {
    const ObjectId id = answered.Object();
    if (id != 0 && std::ranges::find(books.buttons, id, &Button::id) == books.buttons.end())
        books.buttons.push_back({id, call.place, false});
}

// What the ends of a link tell each other: the Core's node that it is listened to, or no more; the
// adaptor's, that the other one dies.
void Receive(Books& books, OpenCall& call, ValueReader& said) {
    using TVL::Util::Message;
    const ObjectId sender = said.Object();
    const std::int32_t id = said.Whole();
    const ObjectId node = id == Message::kStopBroadcasting ? sender : call.object;
    const auto button = std::ranges::find(books.buttons, node, &Button::id);
    if (button == books.buttons.end()) return;
    if (id == Message::kListening) button->isHeard = true;
    if (id == Message::kStoppedListening) button->isHeard = false;
    if (id == Message::kStopBroadcasting) books.buttons.erase(button);
}

// Nothing stays open beyond these, whichever call it is of.
void Stopped(Books& books, OpenCall& call, ValueReader&) {
    books.hasStopEndedGroup = call.groups > 0 && books.groups.empty();
    if (books.calls.size() == 1) TellOpenInTheWay(books, call.place);
}

// What was given belongs to the scene that goes.
void ResetDone(Books& books, OpenCall& call, ValueReader& answered) {
    Stopped(books, call, answered);
    books.hasGivenCoreState = false;
    for (auto& [id, owner] : books.owners)
        owner.hasGivenState = false;
    if (books.calls.size() == 1) TellNodesKeptOverReset(books);
}

}  // namespace

std::span<const Handler> BracketHandlers() {
    static constexpr Handler kHandlers[] = {
        {AdaptorInterface_BeginUndoGroup, BeginGroup, GroupBegun},
        {AdaptorInterface_EndUndoGroup, EndGroup},
        {AdaptorInterface_CancelUndoGroup, EndGroup},
        {AdaptorInterface_AddUndoChunk, AddChunk, ChunkAdded},
        {AdaptorInterface_BeginRecording, BeginRecording, RecordingBegun},
        {AdaptorInterface_BeginRecordingUnkeyed, BeginRecording, RecordingBegun},
        {AdaptorInterface_EndRecording, EndRecording},
        {AdaptorInterface_RequestFocus, RequestFocus},
        {AdaptorInterface_RestoreFocus, RestoreFocus},
        {AdaptorInterface_SetLog, SayPlaced, Placed<&Books::logPlaced>},
        {AdaptorInterface_ClearLog, nullptr, Cleared<&Books::logPlaced>},
        {AdaptorInterface_SetErrorCode, SayPlaced, Placed<&Books::registryPlaced>},
        {AdaptorInterface_ClearErrorCode, nullptr, Cleared<&Books::registryPlaced>},
        {CoreInterface_GetOptionNode, nullptr, ButtonGiven},
        {MessageNode_Receive, Receive},
        {CoreInterface_StopCore, nullptr, Stopped},
        {CoreInterface_ResetCore, nullptr, ResetDone},
    };
    return kHandlers;
}

void TellOpenInTheWay(Books& books, const Place& place) {
    for (Open& open : books.groups)
        TellOnce(books, open, place);
    for (Open& open : books.recordings)
        TellOnce(books, open, place);
}

void TellLeftOpen(Books& books) {
    const auto tell = [&](Rule rule, const std::vector<Open>& list) {
        for (const Open& open : list)
            if (!open.isTold) books.found.Add(rule, open.place, open.name);
    };
    tell(Rule::kGroupLeft, books.groups);
    tell(Rule::kRecordingLeft, books.recordings);
    tell(Rule::kFocusLeft, books.focuses);
    tell(Rule::kSelectionLeft, books.selections);
    for (const Button& button : books.buttons)
        if (button.isHeard) books.found.Add(Rule::kMessageNodeLeft, button.given, {});
    if (books.logPlaced.call != 0) books.found.Add(Rule::kLogLeft, books.logPlaced, {});
    if (books.registryPlaced.call != 0)
        books.found.Add(Rule::kRegistryLeft, books.registryPlaced, {});
}

// The adaptor gives back what was begun inside the call, but for the groups: what these hold is
// cancelled, and their end is still owed.
void PutBack(Books& books, const OpenCall& thrownOutOf) {
    const auto shorten = [](std::vector<Open>& list, std::size_t size) {
        if (list.size() > size) list.resize(size);
    };
    if (books.recordings.size() > thrownOutOf.recordings && thrownOutOf.recordings == 0)
        TellOvertaken(books);
    shorten(books.recordings, thrownOutOf.recordings);
    shorten(books.focuses, thrownOutOf.focuses);
    if (books.groups.size() > thrownOutOf.groups) {
        books.isNestBroken = true;
        ForsakeNest(books);
    }
}

}  // namespace recorder::watching
