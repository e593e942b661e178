#include "hold/undo_stream.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "references/graveyard.h"

bool UndoStreamCanMeetObjects() {
    return headless::UndoStream::Get().IsOccupied();
}

namespace headless {

// Never destroyed: records of other modules must not be run while the process ends.
UndoStream& UndoStream::Get() {
    static UndoStream& stream = *new UndoStream;
    return stream;
}

template <class Act>
void UndoStream::Run(Act act) {
    running_ = true;
    act();
    running_ = false;
}

void UndoStream::Begin() {
    if (!running_) holding_ = true;
}

void UndoStream::Accept(const char* label) {
    if (!holding_) return;
    for (std::size_t i = 0; i < open_.size(); ++i)
        open_[i]->EndHold();
    holding_ = false;
    if (open_.empty()) {
        Graveyard::Get().Sweep();
        return;
    }
    std::vector<Step> undone = std::exchange(redo_, {});
    undo_.push_back({label != nullptr ? label : "", std::exchange(open_, {})});
    std::reverse(undone.begin(), undone.end());
    Drop(std::move(undone));
}

void UndoStream::Cancel() {
    if (!holding_) return;
    holding_ = false;
    Records records = std::exchange(open_, {});
    Run([&] {
        for (auto record = records.rbegin(); record != records.rend(); ++record)
            (*record)->Restore(0);
    });
    Drop(std::move(records));
    FlushIfAsked();
}

void UndoStream::Put(RestoreObj* record) {
    std::unique_ptr<RestoreObj> owned(record);
    if (holding_ && owned) open_.push_back(std::move(owned));
}

bool UndoStream::Undo() {
    if (undo_.empty() || holding_ || running_) return false;
    Run([this] {
        Step step = std::move(undo_.back());
        undo_.pop_back();
        for (auto record = step.records.rbegin(); record != step.records.rend(); ++record)
            (*record)->Restore(1);
        redo_.push_back(std::move(step));
    });
    FlushIfAsked();
    return true;
}

bool UndoStream::Redo() {
    if (redo_.empty() || holding_ || running_) return false;
    Run([this] {
        Step step = std::move(redo_.back());
        redo_.pop_back();
        for (const auto& record : step.records)
            record->Redo();
        undo_.push_back(std::move(step));
    });
    FlushIfAsked();
    return true;
}

void UndoStream::Flush() {
    if (running_) {
        flushWaits_ = true;
        return;
    }
    std::vector<Step> steps = std::exchange(undo_, {});
    std::vector<Step> undone = std::exchange(redo_, {});
    std::move(undone.rbegin(), undone.rend(), std::back_inserter(steps));
    Drop(std::move(steps));
}

std::vector<std::string> UndoStream::UndoLabels() const {
    std::vector<std::string> labels;
    for (auto step = undo_.rbegin(); step != undo_.rend(); ++step)
        labels.push_back(step->label);
    return labels;
}

std::vector<std::string> UndoStream::RedoLabels() const {
    std::vector<std::string> labels;
    for (auto step = redo_.rbegin(); step != redo_.rend(); ++step)
        labels.push_back(step->label);
    return labels;
}

bool UndoStream::IsOccupied() const {
    return holding_ || running_ || dropping_ > 0 || !undo_.empty() || !redo_.empty();
}

void UndoStream::FlushIfAsked() {
    if (std::exchange(flushWaits_, false)) Flush();
}

void UndoStream::Drop(Records records) {
    ++dropping_;
    while (!records.empty())
        records.pop_back();
    --dropping_;
    Graveyard::Get().Sweep();
}

void UndoStream::Drop(std::vector<Step> steps) {
    ++dropping_;
    for (; !steps.empty(); steps.pop_back())
        Drop(std::move(steps.back().records));
    --dropping_;
    Graveyard::Get().Sweep();
}

}  // namespace headless
