#include <cmath>
#include <limits>

#include "core_link/core_answer.h"
#include "measures/host_clock.h"
#include "nodes/max_node.h"

namespace {

// A part before its own parts.
void DeleteTimeOfAll(Animatable* top, Interval range, std::uint32_t flags) {
    std::vector<Animatable*> pending{top};
    while (!pending.empty()) {
        Animatable* const part = pending.back();
        pending.pop_back();
        part->DeleteTime(range, flags);
        for (int index = part->NumSubs(); index-- > 0;)
            if (Animatable* sub = part->SubAnim(index)) pending.push_back(sub);
    }
}

}  // namespace

void CMAXNode::DeleteAnimationFrom(double seconds) {
    AnswerCore("DeleteAnimationFrom", [&] {
        INode* const host = HostNode();
        if (!recordable || !host || std::isnan(seconds)) return;
        // The left end is out, so that a key exactly there stays.
        const Interval later(SnapshotTicks(seconds), std::numeric_limits<TimeValue>::max());
        DeleteTimeOfAll(host, later, TIME_INCRIGHT);
        if (Object* object = host->GetObjectRef()) DeleteTimeOfAll(object, later, TIME_INCRIGHT);
    });
}
