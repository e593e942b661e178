#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tvl/core_element.h"
#include "tvl/error_code.h"
#include "tvl/ids.h"
#include "tvl/log.h"
#include "tvl/mesh.h"
#include "tvl/node.h"
#include "tvl/undo.h"
#include "tvl/xml_node.h"

namespace TVL {

// The version of this contract: what an adaptor's GetVersion says, and what the routine getVersion
// of a Core built from these headers returns.
inline constexpr std::int32_t kInterfaceVersion = 8108;

// A window of the host's; a Core hands it to its own window system.
using WindowHandle = void*;

// The host as the Core sees it: identity, trace and error registry, nodes, undo, time, recording.
// The Core receives it in `attach` and calls it on the host's user-interface thread, also from
// inside any call that the adaptor makes to the Core. Times are seconds. Strings pass by value and
// belong to the callee; strings and lists come back by value. A status is 0 for success, else the
// value of a TVL::ErrorCode; nothing is thrown. Null pointers are normal input and have no effect.
// The object belongs to the adaptor. The order of the virtual operations is part of the contract.
class AdaptorInterface {
  public:
    virtual std::int32_t GetVersion() = 0;

    // The Core may place its own error registry and log, so that both sides fill the same ones.
    // They stay the Core's, and are taken back with the Clear operations before `detach` returns.
    // SetLog copies what has been logged so far into the new log, between two marker lines.
    virtual std::int32_t SetErrorCode(ErrorCode* registry);
    virtual std::int32_t ClearErrorCode();
    virtual std::int32_t SetLog(Log* log);
    virtual std::int32_t ClearLog();

    virtual std::string GetName() = 0;
    virtual std::string GetShortName() = 0;
    virtual std::string GetPlatformName() = 0;
    virtual std::string GetPlatformVersion() = 0;
    virtual WindowHandle GetPlatformWindow() = 0;

    // New nodes in the scene, real from the start. `owner` is required; `parent` and `listener` may
    // be null. The host shows "<plug-in name>_<name>". Both can give null.
    virtual CNode* CreateLensNode(CoreElement* owner, std::string name, CNode* parent,
                                  NodeListener* listener) = 0;
    virtual CNode* CreateHelperNode(CoreElement* owner, std::string name, CNode* parent, CMesh mesh,
                                    NodeListener* listener) = 0;
    virtual CNode* createMesh(void* unused, std::string name) = 0;  // not provided: null

    // Real nodes by owner; FindNode gives the first of that name, or null. Still the adaptor's.
    virtual CNode* FindNode(CoreElement* owner, std::string name) = 0;
    virtual std::vector<CNode*> GetNodes(CoreElement* owner) = 0;

    // Stored nodes found again: for each `node` child of the element `nodeInfo` a snapshot node, or
    // null. It is the one that was saved with this plug-in's name and, as the node's own, the text
    // of the attribute "name"; failing that the scene node whose handle is the text of the child
    // "UID", as earlier versions stored it. The caller releases them, after Claim on those that it
    // takes.
    virtual std::vector<CNode*> ClaimNodes(std::string pluginName, XMLNode nodeInfo) = 0;

    // Brings the objects of another scene file in; snapshot nodes on them and on whatever they hang
    // below, the caller's to release; null for one that has gone meanwhile. Of a file that cannot
    // be merged there are as a rule none, and the trace alone tells why.
    // CoreInterface::SetCoreState is called before this returns, with what the merged nodes bear.
    // No undo step holds a merge: inside a group the step so far is closed under the name "tmp",
    // and another one begins.
    virtual std::vector<CNode*> MergeModels(std::string path) = 0;

    // Undo groups nest; the outermost one becomes one undo step of the host's under its name. A
    // cancel anywhere inside takes the whole nest back when the outermost group ends. Where a step
    // of the host's own is open already (kNodesBeingDeleted), groups only join that, and a cancel
    // takes nothing back. A group may be ended in a later call than it was begun in; until then the
    // user can undo nothing. AddUndoChunk takes the chunk over in every case. The outermost end
    // also tells, with the value of the code "ADAPTOR_EXCEPTION", that something without a status
    // of its own could not be done inside for want of memory or because the host threw; the group
    // is ended all the same. IsHoldingUndo: a group is open, and the host is not undoing or
    // redoing. PerformUndo has the host undo a step, as the user does, and is true whether or not
    // there was one.
    virtual std::int32_t BeginUndoGroup(std::string name) = 0;
    virtual std::int32_t AddUndoChunk(CUndo* chunk) = 0;
    virtual std::int32_t EndUndoGroup() = 0;
    virtual std::int32_t CancelUndoGroup() = 0;
    virtual bool IsHoldingUndo() = 0;
    virtual bool PerformUndo() = 0;

    // The host works in whole ticks: a time that is set is truncated toward zero to one.
    virtual double GetCurrentTime() = 0;
    virtual void SetCurrentTime(double seconds) = 0;
    virtual std::pair<double, double> GetAnimationRange() = 0;
    virtual void SetAnimationRange(std::pair<double, double> startEnd) = 0;
    virtual double GetFrameRate() = 0;      // frames in a second
    virtual double GetFrameDuration() = 0;  // seconds

    virtual void ForceRedraw() = 0;

    // While the Core wants the keyboard; calls nest and balance.
    virtual void RequestFocus() = 0;
    virtual void RestoreFocus() = 0;

    // Between begin and end, transforms and lenses that are written through snapshots become keys.
    // BeginRecording first gives every recordable node of these owners a key of its present pose at
    // the current time. Inside an undo group the host's time goes along: undo puts it back to where
    // the recording began. Mesh snapshots are released before a recording ends. It may end in a
    // later call; until then the user's own changes become keys too. One that begins inside another
    // is part of that.
    virtual std::int32_t BeginRecording(std::vector<CoreElement*> owners) = 0;
    virtual std::int32_t BeginRecordingUnkeyed(std::vector<CoreElement*> owners) = 0;
    virtual std::int32_t EndRecording() = 0;

    virtual std::int32_t FlushUndoBuffer() = 0;

    // The panel of the adaptor's options, for the Core to show; the Core keeps the values. Within
    // groups and lists of any depth stands an element "check" for each switch and one "button" for
    // each button, with child elements that hold a text: "id", an AdaptorOption in decimal, and
    // "name"; of a switch also "value", "true" or "false", which it has until the user changes it;
    // and "tooltip" where there is one. Without children where it cannot be loaded.
    virtual XMLNode GetOptionsPanel() = 0;

  protected:
    ~AdaptorInterface() = default;
};

}  // namespace TVL
