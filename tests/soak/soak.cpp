#include "tests/soak/soak.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "headless/scene_view.h"
#include "host/hold.h"
#include "nodes/max_node.h"

namespace soak {
namespace {

std::string FirstOf(const play::Faults& faults) {
    return faults.empty() ? "" : faults.front();
}

}  // namespace

// The model of undo ------------------------------------------------------------------------------

// Nothing is known of older steps any more, for their records were made for another scene.
void History::Forget(const Look& now, std::size_t depth) {
    states_.assign(depth, {Known::kStale, {}});
    states_.push_back({Known::kSeen, now});
}

// New steps on what was there before.
void History::Grow(const Look& now, std::size_t depth) {
    states_.resize(depth_);
    states_.push_back({Known::kSeen, present_});
    states_.resize(depth);
    states_.push_back({Known::kSeen, now});
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
    } else if (depth >= states_.size() || states_[depth].known == Known::kStale) {
        Forget(now, depth);
    } else if (states_[depth].known == Known::kUnseen) {
        states_[depth] = {Known::kSeen, now};
    } else if (states_[depth].look != now) {
        const Look& then = states_[depth].look;
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

Soak::Soak() {
    onMoment = [this](const std::string& moment) { Strike(moment); };
    history_.Follow(Present(), Session().UndoLabels().size(), {.leftNoRecord = true});
}

void Soak::Strike(const std::string& moment) {
    if (!armed || wait-- > 0) return;
    leftNoRecord = true;
    const play::Act& act = *std::exchange(armed, nullptr);
    std::printf("  in \"%s\": %s\n", moment.c_str(), act.name);
    Do(act);
}

Look Soak::Present() {
    Look look{headless::SceneDigest(), {}, value};
    for (int index = 0; auto& rig : rigs) {
        for (TVL::CoreNode* node : rig.Nodes())
            if (INode* const host = static_cast<CMAXNode*>(node)->HostNode())
                look.nodes.emplace_back(index, host->GetHandle());
        ++index;
    }
    std::ranges::sort(look.nodes);
    return look;
}

std::string Soak::Step(std::string_view bytes) {
    choices = play::Choices(bytes.substr(1));
    Do(StepOf(bytes));
    Follow();
    return FirstOf(Broken());
}

void Soak::Follow() {
    since.inHold |= theHold.Holding();
    since.leftNoRecord |= std::exchange(leftNoRecord, false);
    if (theHold.Holding()) return;
    const std::string fault =
        history_.Follow(Present(), Session().UndoLabels().size(), std::exchange(since, {}));
    if (!fault.empty()) Fail(fault);
}

std::string Soak::Rest() {
    armed = nullptr;
    Settle();
    return FirstOf(BrokenAtRest());
}

}  // namespace soak
