#include "command/conversion.h"

#include <string>

#include "command/exit_status.h"
#include "headless/control/keyframe_chunk.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/node.h"
#include "tvl/ids.h"

namespace headless {
namespace {

bool HasKeyframes(Animatable* part) {
    if (!part) return false;
    if (IsKeyframes(part->ClassID())) return true;
    for (int index = 0; index < part->NumSubs(); ++index)
        if (HasKeyframes(part->SubAnim(index))) return true;
    return false;
}

}  // namespace

// A button has no answer.
void ConvertControllers(CoreStage& stage) {
    stage.NeedCore();
    if (!stage.Seat().Press(TVL::kConvertAllControllers))
        throw Failure(stage.Seat().Library() + ": this Core has no button for option " +
                      std::to_string(TVL::kConvertAllControllers));
    for (const NodeView& view : Nodes()) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(view.handle);
        if (HasKeyframes(node->GetTMController()) || HasKeyframes(node->GetObjectRef()))
            throw Failure(view.name + ": not all controllers of this node could be converted");
    }
}

}  // namespace headless
