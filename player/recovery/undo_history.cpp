#include "player/recovery/undo_history.h"

#include <algorithm>

namespace player {

using recorder::ObjectId;

void UndoHistory::AddChunk(std::size_t group, ObjectId chunk) {
    chunks_[chunk] = group;
    telling_.insert(group);
}

void UndoHistory::AddMade(std::size_t group, ObjectId node, bool isHeard) {
    made_[node] = group;
    if (isHeard) telling_.insert(group);
}

void UndoHistory::AddDeleted(std::size_t group, ObjectId node) {
    deleted_[node] = group;
}

void UndoHistory::Push(std::size_t group) {
    done_.push_back(group);
    taken_.clear();
}

void UndoHistory::PushOther() {
    Push(kOther);
}

void UndoHistory::Flush() {
    done_.clear();
    taken_.clear();
}

void UndoHistory::MoveLast(Steps& from, Steps& to) {
    const std::size_t step = from.back();
    from.pop_back();
    to.push_back(step);
    if (step == kOther) return;
    if (&to == &taken_)
        undone_.insert(step);
    else
        undone_.erase(step);
}

// Nothing where the group is not among them: it is there already, or nothing is known of it.
void UndoHistory::MoveUpTo(std::optional<std::size_t> group, Steps& from, Steps& to) {
    if (!group) return;
    seen_.insert(*group);
    if (std::ranges::find(from, *group) == from.end()) return;
    while (to.empty() || to.back() != *group)
        MoveLast(from, to);
}

void UndoHistory::SeeUndone(ObjectId chunk) {
    const auto group = chunks_.find(chunk);
    if (group != chunks_.end()) MoveUpTo(group->second, done_, taken_);
}

void UndoHistory::SeeRedone(ObjectId chunk) {
    const auto group = chunks_.find(chunk);
    if (group != chunks_.end()) MoveUpTo(group->second, taken_, done_);
}

// How many steps away the group of that node is.
std::optional<std::size_t> UndoHistory::DepthIn(const Steps& steps, const GroupOf& groups,
                                                ObjectId id) {
    const auto group = groups.find(id);
    if (group == groups.end()) return std::nullopt;
    const auto step = std::find(steps.rbegin(), steps.rend(), group->second);
    if (step == steps.rend()) return std::nullopt;
    return step - steps.rbegin();
}

// A node that was made and deleted can go, or come, by an undo and by a redo: the nearer is meant,
// unless the host has told of it.
void UndoHistory::SeeNode(ObjectId node, const GroupOf& undone, const GroupOf& redone) {
    const auto back = DepthIn(done_, undone, node);
    const auto again = DepthIn(taken_, redone, node);
    bool isTold = false;
    for (const GroupOf* groups : {&undone, &redone}) {
        const auto group = groups->find(node);
        if (group == groups->end()) continue;
        seen_.insert(group->second);
        isTold |= std::ranges::find(expected_, group->second) != expected_.end();
    }
    if (isTold) return;
    if (back && (!again || *back <= *again))
        MoveUpTo(undone.at(node), done_, taken_);
    else if (again)
        MoveUpTo(redone.at(node), taken_, done_);
}

void UndoHistory::SeeRemoved(ObjectId node) {
    SeeNode(node, made_, deleted_);
}

void UndoHistory::SeeRestored(ObjectId node) {
    SeeNode(node, deleted_, made_);
}

void UndoHistory::ExpectUndo(std::size_t steps) {
    EndSigns();
    isUndoExpected_ = true;
    for (; steps > 0 && !done_.empty(); --steps) {
        expected_.push_back(done_.back());
        MoveLast(done_, taken_);
    }
}

void UndoHistory::ExpectRedo(std::size_t steps) {
    EndSigns();
    isUndoExpected_ = false;
    for (; steps > 0 && !taken_.empty(); --steps) {
        expected_.push_back(taken_.back());
        MoveLast(taken_, done_);
    }
}

// From the first step on whose signs did not come, what was moved goes back.
void UndoHistory::EndSigns() {
    const auto silent = std::ranges::find_if(expected_, [this](std::size_t step) {
        return telling_.contains(step) && !seen_.contains(step);
    });
    Steps& from = isUndoExpected_ ? taken_ : done_;
    Steps& to = isUndoExpected_ ? done_ : taken_;
    for (auto left = expected_.end() - silent; left > 0 && !from.empty(); --left)
        MoveLast(from, to);
    expected_.clear();
    seen_.clear();
}

bool UndoHistory::IsPresent(ObjectId node) const {
    const auto made = made_.find(node);
    if (made != made_.end() && IsUndone(made->second)) return false;
    const auto deleted = deleted_.find(node);
    return deleted == deleted_.end() || IsUndone(deleted->second);
}

}  // namespace player
