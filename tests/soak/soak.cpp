#include "tests/soak/soak.h"

namespace soak {

// The model of undo ------------------------------------------------------------------------------

// The records of older steps were made for another scene.
void History::Forget(const Look& now, std::size_t depth) {
    states_.assign(depth + 1, now);
    oldest_ = depth;
}

// New steps on what was there before.
void History::Grow(const Look& now, std::size_t depth) {
    states_.resize(depth_);
    states_.emplace_back(present_);
    states_.resize(depth);
    states_.emplace_back(now);
}

std::string History::Follow(const Look& now, std::size_t depth, const Since& since) {
    std::string fault;
    const bool isNew = depth > depth_ && !since.redone;
    if (since.leftNoRecord || (depth == depth_ && !since.inHold && now != present_)) {
        Forget(now, depth);
    } else if (isNew) {
        Grow(now, depth);
    } else if (depth == depth_) {
        if (now != present_) fault = "a hold that made no step left something behind";
    } else if (depth >= states_.size() || depth < oldest_) {
        Forget(now, depth);
    } else if (const Look then = states_[depth].value_or(now); then == now) {
        states_[depth] = now;
    } else {
        fault = depth < depth_ ? "undo" : "redo";
        fault += " does not bring back";
        if (then.scene != now.scene) fault += " the scene";
        if (then.nodes != now.nodes) fault += " the adaptor's nodes";
        if (then.value != now.value) fault += " the Core's value";
    }
    depth_ = depth;
    present_ = now;
    return fault;
}

// A life -----------------------------------------------------------------------------------------

Soak::Soak(bool isRecorded) : Play(isRecorded) {
    onMoment = [this](const std::string& moment) {
        if (!armed || wait-- > 0) return;
        leftNoRecord = true;
        const play::Act& act = *std::exchange(armed, nullptr);
        std::printf("  in \"%s\": %s\n", moment.c_str(), act.name);
        Do(act);
    };
    history_.Follow(Present(), Session().UndoLabels().size(), {.leftNoRecord = true});
}

Look Soak::Present() {
    Look look{headless::SceneDigest(), {}, value};
    for (int index = 0; auto& rig : rigs) {
        for (TVL::CoreNode* node : rig.Nodes())
            if (INode* const host = Behind(node)->HostNode())
                look.nodes.emplace_back(index, host->GetHandle());
        ++index;
    }
    std::ranges::sort(look.nodes);
    return look;
}

play::Faults Soak::Step(std::string_view bytes) {
    choices = play::Choices(bytes.substr(1));
    Do(StepOf(bytes));
    Follow();
    return Broken();
}

void Soak::Follow() {
    since.inHold |= theHold.Holding();
    since.leftNoRecord |= std::exchange(leftNoRecord, false);
    if (theHold.Holding()) return;
    const std::string fault =
        history_.Follow(Present(), Session().UndoLabels().size(), std::exchange(since, {}));
    if (!fault.empty()) Fail(fault);
}

play::Faults Soak::Rest() {
    armed = nullptr;
    Settle();
    return BrokenAtRest();
}

}  // namespace soak
