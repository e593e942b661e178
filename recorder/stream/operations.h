#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// Every operation that adaptor and Core call on each other, a row each. What a call says, and what
// is answered, is a row of letters, one for each value; the values follow one another in a record
// in this order (see record.h for the bytes of each).
//
//   b  a truth             i  a whole number of 32 bits   d  a number
//   s  a text              p  two numbers                 v  three numbers
//   m  a matrix            g  a mesh, by its content      t  a tree
//   o  an object           O  objects, of which some may be none
//   w  a window, which another process has no use for
//   x  what an extension takes or gives: nothing, a whole number, an object or a tree
//
// The ids that ListExtensions gives are a text of numbers, parted by blanks.
//
// What an operation writes to where a pointer of its leads is answered behind its result: of
// IntersectRay the distance and the normal, of GetOptionValue the value (which is said as well), of
// HandleExtension the argument as it is then. Registries and logs that are placed are objects.
//
// The order of the rows is part of the form of tapes: new ones come at the end.
namespace recorder {

//  class, operation, what is said, what is answered
#define RECORDER_OPERATIONS(ROW)                           \
    ROW(Routine, attach, "o", "o")                         \
    ROW(Routine, detach, "o", "")                          \
    ROW(AdaptorInterface, GetVersion, "", "i")             \
    ROW(AdaptorInterface, SetErrorCode, "o", "i")          \
    ROW(AdaptorInterface, ClearErrorCode, "", "i")         \
    ROW(AdaptorInterface, SetLog, "o", "i")                \
    ROW(AdaptorInterface, ClearLog, "", "i")               \
    ROW(AdaptorInterface, GetName, "", "s")                \
    ROW(AdaptorInterface, GetShortName, "", "s")           \
    ROW(AdaptorInterface, GetPlatformName, "", "s")        \
    ROW(AdaptorInterface, GetPlatformVersion, "", "s")     \
    ROW(AdaptorInterface, GetPlatformWindow, "", "w")      \
    ROW(AdaptorInterface, CreateLensNode, "osoo", "o")     \
    ROW(AdaptorInterface, CreateHelperNode, "osogo", "o")  \
    ROW(AdaptorInterface, createMesh, "s", "o")            \
    ROW(AdaptorInterface, FindNode, "os", "o")             \
    ROW(AdaptorInterface, GetNodes, "o", "O")              \
    ROW(AdaptorInterface, ClaimNodes, "st", "O")           \
    ROW(AdaptorInterface, MergeModels, "s", "O")           \
    ROW(AdaptorInterface, BeginUndoGroup, "s", "i")        \
    ROW(AdaptorInterface, AddUndoChunk, "o", "i")          \
    ROW(AdaptorInterface, EndUndoGroup, "", "i")           \
    ROW(AdaptorInterface, CancelUndoGroup, "", "i")        \
    ROW(AdaptorInterface, IsHoldingUndo, "", "b")          \
    ROW(AdaptorInterface, PerformUndo, "", "b")            \
    ROW(AdaptorInterface, GetCurrentTime, "", "d")         \
    ROW(AdaptorInterface, SetCurrentTime, "d", "")         \
    ROW(AdaptorInterface, GetAnimationRange, "", "p")      \
    ROW(AdaptorInterface, SetAnimationRange, "p", "")      \
    ROW(AdaptorInterface, GetFrameRate, "", "d")           \
    ROW(AdaptorInterface, GetFrameDuration, "", "d")       \
    ROW(AdaptorInterface, ForceRedraw, "", "")             \
    ROW(AdaptorInterface, RequestFocus, "", "")            \
    ROW(AdaptorInterface, RestoreFocus, "", "")            \
    ROW(AdaptorInterface, BeginRecording, "O", "i")        \
    ROW(AdaptorInterface, BeginRecordingUnkeyed, "O", "i") \
    ROW(AdaptorInterface, EndRecording, "", "i")           \
    ROW(AdaptorInterface, FlushUndoBuffer, "", "i")        \
    ROW(AdaptorInterface, GetOptionsPanel, "", "t")        \
    ROW(CExtendable, HandleExtension, "ix", "xx")          \
    ROW(CExtendable, ListExtensions, "", "s")              \
    ROW(CExtendable, HasExtension, "i", "b")               \
    ROW(CNode, Show, "", "")                               \
    ROW(CNode, Hide, "", "")                               \
    ROW(CNode, IsVisible, "", "b")                         \
    ROW(CNode, Select, "", "")                             \
    ROW(CNode, IsSnapshot, "", "b")                        \
    ROW(CNode, GetParent, "", "o")                         \
    ROW(CNode, GetChildCount, "", "i")                     \
    ROW(CNode, GetChild, "i", "o")                         \
    ROW(CNode, ReleaseNode, "o", "")                       \
    ROW(CoreNode, Destroy, "", "")                         \
    ROW(CoreNode, Claim, "os", "o")                        \
    ROW(CoreNode, Unclaim, "", "")                         \
    ROW(CoreNode, AcquireSnapshot, "d", "o")               \
    ROW(CoreNode, AcquireHelperSnapshot, "", "o")          \
    ROW(CoreNode, AcquireMeshSnapshot, "d", "o")           \
    ROW(CoreNode, AcquireLensSnapshot, "d", "o")           \
    ROW(CoreNode, AcquireShapeSnapshot, "d", "o")          \
    ROW(CoreNode, ReleaseHelperSnapshot, "o", "")          \
    ROW(CoreNode, ReleaseMeshSnapshot, "o", "")            \
    ROW(CoreNode, ReleaseLensSnapshot, "o", "")            \
    ROW(CoreNode, ReleaseShapeSnapshot, "o", "")           \
    ROW(CoreNode, ReleaseSnapshot, "o", "")                \
    ROW(CoreNode, IsSameNode, "o", "b")                    \
    ROW(CoreNode, SetParent, "o", "")                      \
    ROW(CoreNode, DeleteAnimationFrom, "d", "")            \
    ROW(CoreNode, SetName, "s", "")                        \
    ROW(CoreNode, GetName, "", "s")                        \
    ROW(CoreNode, Delete, "b", "")                         \
    ROW(CoreNode, Clone, "b", "o")                         \
    ROW(CSnapshot, SetLocalTransform, "m", "")             \
    ROW(CSnapshot, GetLocalTransform, "", "m")             \
    ROW(CSnapshot, GetWorldTransform, "", "m")             \
    ROW(CSnapshot, SetWorldTransform, "m", "")             \
    ROW(CSnapshot, GetTime, "", "d")                       \
    ROW(CSnapshot_Helper, SetMesh, "g", "")                \
    ROW(CSnapshot_Helper, SetColor, "ddd", "")             \
    ROW(CSnapshot_Helper, SetWireframe, "b", "")           \
    ROW(CSnapshot_Helper, SetBackfaceCull, "b", "")        \
    ROW(CSnapshot_Lens, SetFieldOfView, "d", "")           \
    ROW(CSnapshot_Lens, GetFieldOfView, "", "d")           \
    ROW(CSnapshot_Lens, GetFieldOfViewType, "", "i")       \
    ROW(CSnapshot_Lens, SetFieldOfViewType, "i", "")       \
    ROW(CSnapshot_Lens, SetTargetDistance, "d", "")        \
    ROW(CSnapshot_Lens, GetTargetDistance, "", "d")        \
    ROW(CSnapshot_Lens, GetTime, "", "d")                  \
    ROW(CSnapshot_Lens, GetLensTransform, "", "m")         \
    ROW(CSnapshot_Mesh, SetMesh, "g", "")                  \
    ROW(CSnapshot_Mesh, GetMesh, "", "g")                  \
    ROW(CSnapshot_Mesh, IntersectRay, "vvbb", "bdv")       \
    ROW(CSnapshot_Shape, GetCurveCount, "", "i")           \
    ROW(CSnapshot_Shape, GetCurve, "", "i")                \
    ROW(CSnapshot_Shape, SetCurve, "i", "")                \
    ROW(CSnapshot_Shape, GetCurveLength, "", "d")          \
    ROW(CSnapshot_Shape, GetCurvePoint, "d", "v")          \
    ROW(CSnapshot_Shape, GetCurveTangent, "d", "v")        \
    ROW(CoreInterface, GetCoreState, "", "t")              \
    ROW(CoreInterface, SetCoreState, "t", "")              \
    ROW(CoreInterface, ResetCore, "", "")                  \
    ROW(CoreInterface, ShowCore, "w", "")                  \
    ROW(CoreInterface, NotifyTimeChanged, "d", "")         \
    ROW(CoreInterface, IsCoreRunning, "", "b")             \
    ROW(CoreInterface, StopCore, "", "")                   \
    ROW(CoreInterface, GetOptionNode, "ii", "o")           \
    ROW(CoreInterface, BindOption, "ii", "")               \
    ROW(CoreInterface, GetOptionValue, "ib", "b")          \
    ROW(NodeListener, OnNodeRemoved, "o", "")              \
    ROW(NodeListener, OnNodeRestored, "o", "")             \
    ROW(CUndo, Undo, "b", "")                              \
    ROW(CUndo, Redo, "", "")                               \
    ROW(CUndo, Release, "", "")                            \
    ROW(MessageNode, Receive, "oisib", "")

// An operation is named with its class, as CSnapshot_GetTime.
enum class Operation : std::uint8_t {
#define RECORDER_NAME(Class, Name, Said, Answered) Class##_##Name,
    RECORDER_OPERATIONS(RECORDER_NAME)
#undef RECORDER_NAME
};

struct OperationRow {
    std::string_view className;
    std::string_view name;
    std::string_view said;
    std::string_view answered;
};

inline constexpr auto kOperations = std::to_array<OperationRow>({
#define RECORDER_ROW(Class, Name, Said, Answered) {#Class, #Name, Said, Answered},
    RECORDER_OPERATIONS(RECORDER_ROW)
#undef RECORDER_ROW
});

constexpr const OperationRow& RowOf(Operation operation) {
    return kOperations[static_cast<std::size_t>(operation)];
}

constexpr bool BeginsRecording(Operation operation) {
    return operation == Operation::AdaptorInterface_BeginRecording ||
           operation == Operation::AdaptorInterface_BeginRecordingUnkeyed;
}

constexpr bool CreatesNode(Operation operation) {
    return operation == Operation::AdaptorInterface_CreateLensNode ||
           operation == Operation::AdaptorInterface_CreateHelperNode;
}

constexpr bool IsOfListener(Operation operation) {
    return operation == Operation::NodeListener_OnNodeRemoved ||
           operation == Operation::NodeListener_OnNodeRestored;
}

}  // namespace recorder
