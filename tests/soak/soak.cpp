#include "tests/soak/soak.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "headless/scene_view.h"
#include "host/hold.h"
#include "nodes/max_node.h"

namespace soak {

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
    play.onMoment = [this](const std::string& moment) { Meet(moment); };
    history_.Follow(Present(), play.Session().UndoLabels().size(), {.leftNoRecord = true});
}

void Soak::Meet(const std::string& moment) {
    if (!armed || wait-- > 0) return;
    play.leftNoRecord = true;
    const play::Act& act = *std::exchange(armed, nullptr);
    std::printf("  in \"%s\": %s\n", moment.c_str(), act.name);
    play.Do(act);
}

void Soak::Fail(const std::string& fault) {
    faults_.push_back(fault);
}

Look Soak::Present() {
    Look look{headless::SceneDigest(), {}, play.value};
    for (int index = 0; auto& rig : play.rigs) {
        for (const TVL::CoreNode* node : rig.Nodes())
            if (const INode* host = static_cast<const CMAXNode*>(node)->HostNode())
                look.nodes.emplace_back(index, const_cast<INode*>(host)->GetHandle());
        ++index;
    }
    std::ranges::sort(look.nodes);
    return look;
}

std::string Soak::Play(std::span<const std::uint8_t> bytes) {
    play.choices = play::Choices(bytes.subspan(1));
    StepOf(bytes).run(*this);
    Follow();
    return Checked(play.Broken());
}

void Soak::Follow() {
    since.inHold |= theHold.Holding();
    since.leftNoRecord |= std::exchange(play.leftNoRecord, false);
    if (theHold.Holding()) return;
    const std::size_t depth = play.Session().UndoLabels().size();
    Fail(history_.Follow(Present(), depth, std::exchange(since, {})));
}

std::string Soak::Rest() {
    armed = nullptr;
    play.Settle();
    return Checked(play.BrokenAtRest());
}

std::string Soak::Checked(play::Faults faults) {
    for (play::Faults* each : {&faults_, &faults})
        for (const std::string& fault : *each)
            if (!fault.empty()) return fault;
    return {};
}

}  // namespace soak
