#include "player/recovery/work_groups.h"

#include <algorithm>

#include "player/recovery/effects.h"

namespace player {

using recorder::ValueReader;

WorkGroups::WorkGroups(const SessionCalls& calls) : calls_(calls) {
    WorkGroup& outside = groups_.emplace_back();
    outside.isGroup = false;
    outside.fate = Fate::kFinished;
}

void WorkGroups::BeginScene() {
    history_ = {};
    recordings_.clear();
    depth_ = 0;
    current_ = kOutside;
    isCancelling_ = false;
}

void WorkGroups::Begin(const Record& call, std::string_view name, bool isGroup) {
    current_ = groups_.size();
    WorkGroup& group = groups_.emplace_back();
    group.name = name;
    group.isGroup = isGroup;
    group.firstCall = call.head.call;
}

void WorkGroups::SeeBegin(const Record& call) {
    if (call.head.operation == Operation::AdaptorInterface_BeginUndoGroup) {
        if (!calls_.IsDone(call) || depth_++ > 0) return;
        Begin(call, ValueReader(call).Text(), true);
        hasSteps_ = false;
        return;
    }
    const std::string_view name = depth_ == 0 ? OwnStepOf(call) : "";
    if (name.empty()) return;
    Begin(call, name, false);
    groups_[current_].fate = Fate::kFinished;
    ownStep_ = current_;
    isOwnStepMade_ = call.head.operation == Operation::CNode_Select;
}

void WorkGroups::SeeCall(const Record& call, bool isChange) {
    const Operation operation = call.head.operation;
    ValueReader said(call);
    hasSteps_ |= isChange;
    switch (operation) {
        case Operation::AdaptorInterface_EndUndoGroup:
        case Operation::AdaptorInterface_CancelUndoGroup:
            EndGroup(operation == Operation::AdaptorInterface_CancelUndoGroup);
            break;
        case Operation::AdaptorInterface_PerformUndo:
            history_.ExpectUndo(1);
            break;
        case Operation::AdaptorInterface_FlushUndoBuffer:
            history_.Flush();
            break;
        case Operation::AdaptorInterface_AddUndoChunk:
            hasSteps_ = true;
            if (calls_.IsDone(call) && current_ != kOutside)
                history_.AddChunk(current_, said.Object());
            break;
        case Operation::AdaptorInterface_CreateLensNode:
        case Operation::AdaptorInterface_CreateHelperNode: {
            const bool isHelper = operation == Operation::AdaptorInterface_CreateHelperNode;
            for (const char letter : std::string_view(isHelper ? "osog" : "oso"))
                said.Skip(letter);
            if (current_ != kOutside && calls_.Given(call) != 0)
                history_.AddMade(current_, calls_.Given(call), said.Object() != 0);
            break;
        }
        case Operation::CoreNode_Delete:
            if (current_ != kOutside) history_.AddDeleted(current_, call.head.object);
            break;
        default:
            SeeRecording(call);
            break;
    }
    if (ownStep_ != kOutside) current_ = kOutside;
}

void WorkGroups::EndGroup(bool isCancelled) {
    if (depth_ == 0) return;
    isCancelling_ |= isCancelled;
    if (--depth_ > 0) return;
    if (current_ != kOutside) {
        groups_[current_].fate = isCancelling_ ? Fate::kCancelled : Fate::kFinished;
        if (isCancelling_)
            history_.Cancel(current_);
        else if (hasSteps_)
            history_.Push(current_);
    }
    isCancelling_ = false;
    current_ = kOutside;
}

void WorkGroups::SeeRecording(const Record& call) {
    const Operation operation = call.head.operation;
    if (recorder::BeginsRecording(operation) && calls_.IsDone(call)) {
        recordings_.push_back(call.head.call);
        hasSteps_ = true;
    }
    if (operation == Operation::AdaptorInterface_EndRecording && !recordings_.empty())
        recordings_.pop_back();
}

void WorkGroups::SeeCallOfAdaptor(const Record& call, bool isSignOfUndo) {
    ValueReader said(call);
    switch (call.head.operation) {
        case Operation::CUndo_Undo:
            if (said.Truth()) history_.SeeUndone(call.head.object);
            break;
        case Operation::CUndo_Redo:
            history_.SeeRedone(call.head.object);
            break;
        case Operation::NodeListener_OnNodeRemoved:
            if (isSignOfUndo) history_.SeeRemoved(said.Object());
            break;
        case Operation::NodeListener_OnNodeRestored:
            if (isSignOfUndo) history_.SeeRestored(said.Object());
            break;
        case Operation::CoreInterface_IsCoreRunning:
            isOwnStepMade_ = true;  // a conversion asks for keys
            break;
        case Operation::CUndo_Release:
        case Operation::CoreInterface_NotifyTimeChanged:
        case Operation::CoreInterface_GetOptionValue:
        case Operation::MessageNode_Receive:
            break;
        default:
            history_.EndSigns();
            break;
    }
}

// A call that threw had its group's hold cancelled and its recording ended, if it had begun them;
// the group's name stands until it is ended.
void WorkGroups::SeeEnd(const Record& call, bool isThrown) {
    if (ownStep_ != kOutside && groups_[ownStep_].firstCall == call.head.call) {
        if (isOwnStepMade_) history_.Push(ownStep_);
        ownStep_ = kOutside;
    }
    if (!isThrown || IsOfCore(call)) return;
    std::erase_if(recordings_, [&](std::uint64_t began) { return began > call.head.call; });
    if (current_ == kOutside || groups_[current_].firstCall < call.head.call) return;
    groups_[current_].fate = Fate::kCancelled;
    history_.Cancel(current_);
    current_ = kOutside;
}

// What a person does to the scene makes a step, but for what the host makes several of.
void WorkGroups::SeeStep(std::string_view word, std::size_t count) {
    history_.EndSigns();
    if (word == "undo") history_.ExpectUndo(count);
    if (word == "redo") history_.ExpectRedo(count);
    if (word == "delete" || word == "move" || word == "parent") history_.PushOther();
}

// A nest in which there was a cancel would have been cancelled however it ended.
void WorkGroups::End() {
    history_.EndSigns();
    if (isCancelling_ && current_ != kOutside) groups_[current_].fate = Fate::kCancelled;
    for (std::size_t group = 0; group < groups_.size(); ++group)
        if (groups_[group].fate == Fate::kFinished && history_.IsUndone(group))
            groups_[group].fate = Fate::kUndone;
}

}  // namespace player
