#pragma once

#include "nodes/mesh_cache.h"
#include "nodes/node_deletion.h"
#include "nodes/node_list.h"
#include "nodes/recording.h"
#include "scene_state/state_chunk.h"
#include "scene_state/state_format.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/adaptor_interface.h"
#include "tvl/message.h"
#include "tvl/singleton.h"
#include "undo/undo_groups.h"

// The keyboard, which the Core asks for and gives back. While it has it, the host's accelerators
// are off. Calls nest; one RestoreFocus too many has to be made up for by a RequestFocus.
struct FocusState {
    std::int32_t focusCount = 0;  // depth of RequestFocus calls
};

// The host as the Core sees it: the table of contents of this system, whose every operation stands
// in the room that does the work. It also holds the state of the adaptor, in runs; each room
// reaches its own through the accessor that it declares. As a message node it listens to the
// Core's option button that converts all controllers.
// The order of the bases and of the state is part of the contract.
class MaxAdaptorInterface final : public TVL::AdaptorInterface,
                                  public TVL::Util::Singleton<MaxAdaptorInterface>,
                                  public TVL::Util::MessageNode {
  public:
    MaxAdaptorInterface();

    std::int32_t GetVersion() override { return TVL::kInterfaceVersion; }

    // A log that is placed or cleared takes its text with it, which the trace file needs before.
    std::int32_t SetLog(TVL::Log* log) override;
    std::int32_t ClearLog() override;

    // As a message node its name is "MaxAdaptorInterface".
    std::string GetName() const override;
    std::string GetName() override;
    std::string GetShortName() override { return kPlatform; }
    std::string GetPlatformName() override { return "3ds max"; }
    std::string GetPlatformVersion() override { return "9"; }
    TVL::WindowHandle GetPlatformWindow() override;

    TVL::CNode* CreateLensNode(TVL::CoreElement* owner, std::string nodeName, TVL::CNode* parent,
                               TVL::NodeListener* listener) override;
    TVL::CNode* CreateHelperNode(TVL::CoreElement* owner, std::string nodeName, TVL::CNode* parent,
                                 TVL::CMesh mesh, TVL::NodeListener* listener) override;
    TVL::CNode* createMesh(void* unused, std::string nodeName) override;
    TVL::CNode* FindNode(TVL::CoreElement* owner, std::string nodeName) override;
    std::vector<TVL::CNode*> GetNodes(TVL::CoreElement* owner) override;
    std::vector<TVL::CNode*> ClaimNodes(std::string pluginName, XMLNode nodeInfo) override;
    std::vector<TVL::CNode*> MergeModels(std::string path) override;

    std::int32_t BeginUndoGroup(std::string groupName) override;
    std::int32_t AddUndoChunk(TVL::CUndo* chunk) override;
    std::int32_t EndUndoGroup() override;
    std::int32_t CancelUndoGroup() override;
    bool IsHoldingUndo() override;
    bool PerformUndo() override;

    double GetCurrentTime() override;
    void SetCurrentTime(double seconds) override;
    std::pair<double, double> GetAnimationRange() override;
    void SetAnimationRange(std::pair<double, double> startEnd) override;
    double GetFrameRate() override;
    double GetFrameDuration() override;

    void ForceRedraw() override;
    void RequestFocus() override;
    void RestoreFocus() override;

    std::int32_t BeginRecording(std::vector<TVL::CoreElement*> owners) override;
    std::int32_t BeginRecordingUnkeyed(std::vector<TVL::CoreElement*> owners) override;
    std::int32_t EndRecording() override;

    std::int32_t FlushUndoBuffer() override;
    XMLNode GetOptionsPanel() override;

    // What goes to nodes of the Core's is a call into it.
    std::int32_t Listen(TVL::Util::MessageNode* node) override;
    std::int32_t StopListening(TVL::Util::MessageNode* node) override;
    void Receive(TVL::Util::Message* message, bool isBroadcast) override;
    std::int32_t Send(TVL::Util::MessageNode* target, TVL::Util::Message* message) override;
    void Broadcast(TVL::Util::Message* message) override;

    RecordingState recording;
    UndoGroups undo;
    NodeList nodeList;
    DeletionState deletion;
    FocusState focus;
    MeshCache meshCache;
    TaggedNodeLists taggedNodes;
    StateRecord stateRecord;
};
