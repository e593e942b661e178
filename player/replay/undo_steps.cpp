#include "player/replay/undo_steps.h"

#include <algorithm>
#include <utility>

#include "recorder/stream/record_reader.h"

namespace player {

using recorder::ValueReader;

struct UndoSteps::Told {
    ObjectId object;
    Operation operation;

    friend bool operator==(const Told&, const Told&) = default;
};

struct UndoSteps::Direction {
    std::vector<Step>& from;
    std::vector<Step>& to;
    Operation Deed::*told;
    const char* name;
};

UndoSteps::UndoSteps(const recorder::TapeSession& session) : records_(session.records) {
    for (const Record& record : records_)
        if (record.head.kind == RecordKind::kCall &&
            recorder::KindOf(record.head.object) == ObjectKind::kListener)
            heardOf_.insert(ValueReader(record).Object());
}

// Undo takes the time back to where a recording began, and redo forth again. Of a step that tells
// of nothing else it shows in what is undone or redone next that it was passed, too.
const char* UndoSteps::TakeWithTime(std::size_t place) {
    const double seconds = ValueReader(records_[place]).Number();
    const std::vector<Told> told = ToldFrom(place + 1);
    for (const Direction& direction : {Back(), Forth()}) {
        const Step* const next = told.empty() ? nullptr : StepOf(direction, told);
        if (!next) continue;
        const auto timed =
            std::find_if(direction.from.rbegin(), direction.from.rend(),
                         [&](const Step& step) { return step.otherTime || &step == next; });
        if (timed->otherTime == seconds) return Go(direction, &*timed);
    }
    return nullptr;
}

// Whichever stack has the step of which all that is told here would be told. If both have, what
// tells of more is meant.
const char* UndoSteps::Take(std::size_t place) {
    const std::vector<Told> told = ToldFrom(place);
    const Step* const undone = StepOf(Back(), told);
    const Step* const redone = StepOf(Forth(), told);
    const std::size_t ofUndone = undone ? undone->deeds.size() : 0;
    const std::size_t ofRedone = redone ? redone->deeds.size() : 0;
    if (ofUndone == ofRedone) return nullptr;
    return ofUndone > ofRedone ? Go(Back(), undone) : Go(Forth(), redone);
}

// What nodes, chunks and nobody else were told from a place on.
std::vector<UndoSteps::Told> UndoSteps::ToldFrom(std::size_t place) const {
    std::vector<Told> told;
    for (; place < records_.size(); ++place) {
        const Record& record = records_[place];
        const Operation operation = record.head.operation;
        if (record.head.kind != RecordKind::kCall || record.head.nesting > 0) continue;
        if (operation == Operation::CoreInterface_IsCoreRunning) continue;
        const ObjectKind kind = recorder::KindOf(record.head.object);
        if (kind == ObjectKind::kListener)
            told.push_back({ValueReader(record).Object(), operation});
        else if (kind == ObjectKind::kChunk)
            told.push_back({record.head.object, operation});
        else if (operation != Operation::CoreInterface_NotifyTimeChanged)
            break;
    }
    return told;
}

// The next step of which anything is told, if that is what was told; steps of the user's own and
// mere keys may stand above it.
UndoSteps::Step* UndoSteps::StepOf(const Direction& direction, const std::vector<Told>& told) {
    const auto step = std::find_if(direction.from.rbegin(), direction.from.rend(),
                                   [](const Step& each) { return !each.deeds.empty(); });
    if (step == direction.from.rend()) return nullptr;
    std::vector<Told> due;
    for (const Deed& deed : step->deeds)
        due.push_back({deed.object, deed.*direction.told});
    if (direction.told == &Deed::undone) std::ranges::reverse(due);
    const bool isIt = told.size() >= due.size() && std::equal(due.begin(), due.end(), told.begin());
    return isIt ? &*step : nullptr;
}

const char* UndoSteps::Go(const Direction& direction, const Step* step) {
    double time = now_;
    for (bool isMet = false; !isMet;) {
        Step& next = direction.from.back();
        isMet = &next == step;
        if (next.otherTime) std::swap(*next.otherTime, time);
        direction.to.push_back(std::move(next));
        direction.from.pop_back();
    }
    return direction.name;
}

UndoSteps::Direction UndoSteps::Back() {
    return {undo_, redo_, &Deed::undone, "undo"};
}

UndoSteps::Direction UndoSteps::Forth() {
    return {redo_, undo_, &Deed::redone, "redo"};
}

void UndoSteps::Note(ObjectId object, Operation undone, Operation redone) {
    const bool isHeardOf =
        recorder::KindOf(object) == ObjectKind::kChunk || heardOf_.contains(object);
    if (groups_ > 0 && isHeardOf) open_.deeds.push_back({object, undone, redone});
}

void UndoSteps::Follow(const Record& record) {
    const bool isCall = record.head.kind == RecordKind::kCall;
    const bool isAnswer = record.head.kind == RecordKind::kAnswer;
    if (!isCall && !isAnswer) return;
    switch (record.head.operation) {
        case Operation::AdaptorInterface_BeginUndoGroup:
            if (isCall && ++groups_ == 1) open_ = {};
            break;
        case Operation::AdaptorInterface_CancelUndoGroup:
            if (isCall) isCancelled_ = true;
            [[fallthrough]];
        case Operation::AdaptorInterface_EndUndoGroup:
            if (!isCall || groups_ == 0 || --groups_ > 0) break;
            if (!std::exchange(isCancelled_, false)) undo_.push_back(std::exchange(open_, {}));
            redo_.clear();
            break;
        case Operation::AdaptorInterface_BeginRecording:
        case Operation::AdaptorInterface_BeginRecordingUnkeyed:
            if (isCall && groups_ > 0 && !open_.otherTime) open_.otherTime = now_;
            break;
        case Operation::CoreInterface_NotifyTimeChanged:
            if (isCall) now_ = ValueReader(record).Number();
            break;
        case Operation::AdaptorInterface_AddUndoChunk:
            if (isCall)
                Note(ValueReader(record).Object(), Operation::CUndo_Undo, Operation::CUndo_Redo);
            break;
        case Operation::AdaptorInterface_CreateLensNode:
        case Operation::AdaptorInterface_CreateHelperNode:
            if (isAnswer)
                Note(ValueReader(record).Object(), Operation::NodeListener_OnNodeRemoved,
                     Operation::NodeListener_OnNodeRestored);
            break;
        case Operation::CoreNode_Delete:
            if (isCall)
                Note(record.head.object, Operation::NodeListener_OnNodeRestored,
                     Operation::NodeListener_OnNodeRemoved);
            break;
        case Operation::CoreInterface_ResetCore:
        case Operation::AdaptorInterface_FlushUndoBuffer:
            undo_.clear();
            redo_.clear();
            break;
        default:
            break;
    }
}

}  // namespace player
