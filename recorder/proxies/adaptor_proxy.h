#pragma once

#include "recorder/proxies/nodes.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/scene_digest.h"
#include "tvl/adaptor_interface.h"

namespace recorder {

// Stands for the adaptor.
class AdaptorProxy final : public Proxy<AdaptorInterface> {
  public:
    using enum Operation;

    AdaptorProxy(Scribe& scribe, Owners& owners, Nodes& nodes, AdaptorInterface& real)
        : Proxy(scribe, scribe.NewId(ObjectKind::kAdaptor), &real),
          owners_(owners),
          nodes_(nodes) {}

    // Identity, and what the Core places.

    std::int32_t GetVersion() override { return Pass<AdaptorInterface_GetVersion>(); }
    std::int32_t SetErrorCode(TVL::ErrorCode* registry) override {
        return Place<AdaptorInterface_SetErrorCode>(ObjectKind::kRegistry, registry);
    }
    std::int32_t ClearErrorCode() override { return Pass<AdaptorInterface_ClearErrorCode>(); }
    std::int32_t SetLog(TVL::Log* log) override {
        return Place<AdaptorInterface_SetLog>(ObjectKind::kLog, log);
    }
    std::int32_t ClearLog() override { return Pass<AdaptorInterface_ClearLog>(); }
    std::string GetName() override { return Pass<AdaptorInterface_GetName>(); }
    std::string GetShortName() override { return Pass<AdaptorInterface_GetShortName>(); }
    std::string GetPlatformName() override { return Pass<AdaptorInterface_GetPlatformName>(); }
    std::string GetPlatformVersion() override {
        return Pass<AdaptorInterface_GetPlatformVersion>();
    }
    TVL::WindowHandle GetPlatformWindow() override {
        return Pass<AdaptorInterface_GetPlatformWindow>();
    }
    XMLNode GetOptionsPanel() override { return Pass<AdaptorInterface_GetOptionsPanel>(); }

    // Nodes.

    CNode* CreateLensNode(CoreElement* owner, std::string name, CNode* parent,
                          NodeListener* listener) override {
        return Create<AdaptorInterface_CreateLensNode>(owner, name, parent, listener);
    }
    CNode* CreateHelperNode(CoreElement* owner, std::string name, CNode* parent, TVL::CMesh mesh,
                            NodeListener* listener) override {
        return Create<AdaptorInterface_CreateHelperNode>(owner, name, parent, listener, mesh);
    }
    CNode* createMesh(void* unused, std::string name) override {
        const auto make = [&] { return nodes_.New(real_->createMesh(unused, std::move(name))); };
        return scribe_.Record<AdaptorInterface_createMesh>(id_, make, name);
    }

    CNode* FindNode(CoreElement* owner, std::string name) override {
        OwnerProxy* const ownerHere = owners_.Of(owner);
        const auto make = [&] { return nodes_.Known(real_->FindNode(ownerHere, std::move(name))); };
        return scribe_.Record<AdaptorInterface_FindNode>(id_, make, ownerHere, name);
    }

    std::vector<CNode*> GetNodes(CoreElement* owner) override {
        OwnerProxy* const ownerHere = owners_.Of(owner);
        const auto ask = [&] { return nodes_.Known(real_->GetNodes(ownerHere)); };
        return Give<AdaptorInterface_GetNodes>(ask, ownerHere);
    }

    std::vector<CNode*> ClaimNodes(std::string pluginName, XMLNode nodeInfo) override {
        const auto ask = [&] {
            return nodes_.New(real_->ClaimNodes(std::move(pluginName), std::move(nodeInfo)));
        };
        return Give<AdaptorInterface_ClaimNodes>(ask, pluginName, nodeInfo);
    }

    std::vector<CNode*> MergeModels(std::string path) override {
        const auto ask = [&] {
            NoteRead(path);
            return nodes_.New(real_->MergeModels(std::move(path)));
        };
        return Give<AdaptorInterface_MergeModels>(ask, path);
    }

    // Undo.

    std::int32_t BeginUndoGroup(std::string name) override {
        return Pass<AdaptorInterface_BeginUndoGroup>(std::move(name));
    }
    std::int32_t AddUndoChunk(CUndo* chunk) override {
        ObjectId id = 0;
        CUndo* const given = owners_.WrapChunk(chunk, id);
        const auto make = [&] { return real_->AddUndoChunk(given); };
        return scribe_.Record<AdaptorInterface_AddUndoChunk>(id_, make, id);
    }
    std::int32_t EndUndoGroup() override { return Pass<AdaptorInterface_EndUndoGroup>(); }
    std::int32_t CancelUndoGroup() override { return Pass<AdaptorInterface_CancelUndoGroup>(); }
    bool IsHoldingUndo() override { return Pass<AdaptorInterface_IsHoldingUndo>(); }
    bool PerformUndo() override { return Pass<AdaptorInterface_PerformUndo>(); }
    std::int32_t FlushUndoBuffer() override { return Pass<AdaptorInterface_FlushUndoBuffer>(); }

    // Time, eyes and hands.

    double GetCurrentTime() override { return Pass<AdaptorInterface_GetCurrentTime>(); }
    void SetCurrentTime(double seconds) override { Pass<AdaptorInterface_SetCurrentTime>(seconds); }
    std::pair<double, double> GetAnimationRange() override {
        return Pass<AdaptorInterface_GetAnimationRange>();
    }
    void SetAnimationRange(std::pair<double, double> startEnd) override {
        Pass<AdaptorInterface_SetAnimationRange>(startEnd);
    }
    double GetFrameRate() override { return Pass<AdaptorInterface_GetFrameRate>(); }
    double GetFrameDuration() override { return Pass<AdaptorInterface_GetFrameDuration>(); }
    void ForceRedraw() override { Pass<AdaptorInterface_ForceRedraw>(); }
    void RequestFocus() override { Pass<AdaptorInterface_RequestFocus>(); }
    void RestoreFocus() override { Pass<AdaptorInterface_RestoreFocus>(); }

    // Recording.

    std::int32_t BeginRecording(std::vector<CoreElement*> owners) override {
        return Begin<AdaptorInterface_BeginRecording>(owners);
    }
    std::int32_t BeginRecordingUnkeyed(std::vector<CoreElement*> owners) override {
        return Begin<AdaptorInterface_BeginRecordingUnkeyed>(owners);
    }
    std::int32_t EndRecording() override { return Pass<AdaptorInterface_EndRecording>(); }

  private:
    template <Operation kOperation, class Placed>
    std::int32_t Place(ObjectKind kind, Placed* placed) {
        const auto make = [&] { return (real_->*kMethodOf<kOperation>)(placed); };
        return scribe_.Record<kOperation>(id_, make, scribe_.IdOf(kind, placed));
    }

    template <Operation kOperation, class... Mesh>
    CNode* Create(CoreElement* owner, std::string& name, CNode* parent, NodeListener* listener,
                  Mesh&... mesh) {
        OwnerProxy* const ownerHere = owners_.Named(owner);
        const NodeProxy* const above = NodeProxy::From(parent);
        const auto make = [&] {
            return nodes_.Created(listener, [&](NodeListener* here) {
                return (real_->*kMethodOf<kOperation>)(ownerHere, std::move(name), RealOf(above),
                                                       std::move(mesh)..., here);
            });
        };
        return scribe_.Record<kOperation>(id_, make, ownerHere, name, above, mesh...,
                                          scribe_.IdOf(ObjectKind::kListener, listener));
    }

    // A list is handed on where it lies, since what there is no memory for would never be given
    // back.
    template <Operation kOperation, class Ask, class... Said>
    std::vector<CNode*> Give(const Ask& ask, const Said&... said) {
        std::vector<CNode*> nodes;
        const auto make = [&] {
            nodes = ask();
            return Scribe::IdsOf<NodeProxy>(nodes);
        };
        scribe_.Record<kOperation>(id_, make, said...);
        return nodes;
    }

    // What there is no memory for stays untold.
    void NoteRead(const std::string& path) noexcept {
        try {
            scribe_.Note(note::kRead, DigestOfFile(path) + ' ' + path);
        } catch (...) {
        }
    }

    template <Operation kOperation>
    std::int32_t Begin(std::vector<CoreElement*>& owners) {
        for (CoreElement*& owner : owners)
            owner = owners_.Of(owner);
        const auto make = [&] { return (real_->*kMethodOf<kOperation>)(std::move(owners)); };
        return scribe_.Record<kOperation>(id_, make, Scribe::IdsOf<OwnerProxy>(owners));
    }

    Owners& owners_;
    Nodes& nodes_;
};

}  // namespace recorder
