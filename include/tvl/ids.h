#pragma once

#include <cstdint>

// Every number that adaptor and Core say to each other. kInterfaceVersion fixes their values.
namespace TVL {

// What CNode::HandleExtension does for a Core. The result is 0 where nothing is said of it.
enum NodeExtension : int {
    kBeginSelection = 10,  // a batch: the selection is emptied, and CNode::Select adds from here
                           // on, without undo steps; 1 unless one was open
    kEndSelection = 11,    // 1 if one was open
    kStopRecording = 17,   // takes the node out of recording for good, then kUseHostController
    kIsSameNode = 31,      // of the CoreNode in the argument: 1 if it is the same scene node
    kCloneBelow = 37,      // as CoreNode::Clone, with what stands below; the clone hangs below the
                           // CoreNode in the argument, or where the host puts it if that is null;
                           // gives it as a snapshot CoreNode, the caller's to release
    kUseHostController = 57  // the host's default transform controller in place of the adaptor's;
                             // not listed
};

// What the adaptor asks of a CoreElement; how it answers stands there.
enum ElementExtension : int {
    kNodesBeingDeleted = 43,  // argument null
    kSceneBeingSaved = 56     // argument XMLNode*
};

// The adaptor's options, which AdaptorInterface::GetOptionsPanel describes and the Core keeps.
enum AdaptorOption : int {
    kOptimisedControllers = 1027,   // created nodes get the adaptor's own controllers
    kConvertAllControllers = 1028,  // a button, which sends kButtonPressed
    kDynamicMeshes = 1030           // mesh snapshots take the mesh of each time they are read at
};

// Messages between the two.
enum AdaptorMessage : std::int32_t {
    kButtonPressed = 324  // from the node that CoreInterface::GetOptionNode gave for a button
};

}  // namespace TVL
