#include "player/recovery/effects.h"

#include "recorder/stream/record_reader.h"
#include "tvl/ids.h"

namespace player {
namespace {

using recorder::ValueReader;

constexpr char kSelect[] = "Select";
constexpr char kConvert[] = "Convert to PRS controller";

}  // namespace

Effect EffectOf(const Record& call) {
    switch (call.head.operation) {
        case Operation::AdaptorInterface_SetErrorCode:
        case Operation::AdaptorInterface_ClearErrorCode:
        case Operation::AdaptorInterface_SetLog:
        case Operation::AdaptorInterface_ClearLog:
        case Operation::AdaptorInterface_GetPlatformWindow:
        case Operation::AdaptorInterface_BeginUndoGroup:  // all becomes one group
        case Operation::AdaptorInterface_AddUndoChunk:
        case Operation::AdaptorInterface_EndUndoGroup:
        case Operation::AdaptorInterface_CancelUndoGroup:
        case Operation::AdaptorInterface_PerformUndo:
        case Operation::AdaptorInterface_FlushUndoBuffer:
        case Operation::AdaptorInterface_ForceRedraw:
        case Operation::AdaptorInterface_RequestFocus:
        case Operation::AdaptorInterface_RestoreFocus:
        case Operation::AdaptorInterface_GetOptionsPanel:
        case Operation::MessageNode_Receive:
            return Effect::kNone;
        case Operation::AdaptorInterface_CreateLensNode:
        case Operation::AdaptorInterface_CreateHelperNode:
        case Operation::AdaptorInterface_MergeModels:
        case Operation::AdaptorInterface_SetAnimationRange:
        case Operation::AdaptorInterface_BeginRecording:
        case Operation::CNode_Show:
        case Operation::CNode_Hide:
        case Operation::CoreNode_Claim:
        case Operation::CoreNode_SetParent:
        case Operation::CoreNode_DeleteAnimationFrom:
        case Operation::CoreNode_SetName:
        case Operation::CoreNode_Delete:
        case Operation::CoreNode_Clone:
        case Operation::CSnapshot_Helper_SetMesh:
        case Operation::CSnapshot_Helper_SetColor:
        case Operation::CSnapshot_Helper_SetWireframe:
        case Operation::CSnapshot_Helper_SetBackfaceCull:
        case Operation::CSnapshot_Mesh_SetMesh:
            return Effect::kChange;
        case Operation::CSnapshot_SetLocalTransform:
        case Operation::CSnapshot_SetWorldTransform:
        case Operation::CSnapshot_Lens_SetFieldOfView:
        case Operation::CSnapshot_Lens_SetFieldOfViewType:
        case Operation::CSnapshot_Lens_SetTargetDistance:
            return Effect::kSample;
        case Operation::CExtendable_HandleExtension: {
            const int extension = ValueReader(call).Whole();
            const bool isChange = extension == TVL::kStopRecording ||
                                  extension == TVL::kCloneBelow ||
                                  extension == TVL::kUseHostController;
            return isChange ? Effect::kChange : Effect::kLook;
        }
        default:
            return Effect::kLook;
    }
}

bool MakesSceneNode(Operation operation) {
    return recorder::CreatesNode(operation) || operation == Operation::CoreNode_Clone;
}

std::string_view OwnStepOf(const Record& call) {
    if (call.head.operation == Operation::CNode_Select) return kSelect;
    if (call.head.operation != Operation::CExtendable_HandleExtension) return {};
    const int extension = ValueReader(call).Whole();
    const bool converts = extension == TVL::kStopRecording || extension == TVL::kUseHostController;
    return converts ? kConvert : "";
}

}  // namespace player
