#pragma once

#include "recorder/proxies/nodes.h"
#include "tvl/adaptor_interface.h"

namespace recorder {

// Stands for the adaptor.
class AdaptorProxy final : public TVL::AdaptorInterface {
  public:
    AdaptorProxy(Scribe& scribe, Owners& owners, Nodes& nodes, TVL::AdaptorInterface& real)
        : scribe_(scribe),
          owners_(owners),
          nodes_(nodes),
          id_(scribe.NewId(ObjectKind::kAdaptor)),
          real_(&real) {}
    AdaptorProxy(const AdaptorProxy&) = delete;
    AdaptorProxy& operator=(const AdaptorProxy&) = delete;

    ObjectId Id() const { return id_; }

    std::int32_t GetVersion() override;
    std::int32_t SetErrorCode(TVL::ErrorCode* registry) override;
    std::int32_t ClearErrorCode() override;
    std::int32_t SetLog(TVL::Log* log) override;
    std::int32_t ClearLog() override;
    std::string GetName() override;
    std::string GetShortName() override;
    std::string GetPlatformName() override;
    std::string GetPlatformVersion() override;
    TVL::WindowHandle GetPlatformWindow() override;
    TVL::CNode* CreateLensNode(TVL::CoreElement* owner, std::string name, TVL::CNode* parent,
                               TVL::NodeListener* listener) override;
    TVL::CNode* CreateHelperNode(TVL::CoreElement* owner, std::string name, TVL::CNode* parent,
                                 TVL::CMesh mesh, TVL::NodeListener* listener) override;
    TVL::CNode* createMesh(void* unused, std::string name) override;
    TVL::CNode* FindNode(TVL::CoreElement* owner, std::string name) override;
    std::vector<TVL::CNode*> GetNodes(TVL::CoreElement* owner) override;
    std::vector<TVL::CNode*> ClaimNodes(std::string pluginName, XMLNode nodeInfo) override;
    std::vector<TVL::CNode*> MergeModels(std::string path) override;
    std::int32_t BeginUndoGroup(std::string name) override;
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

  private:
    template <Operation kOperation, auto kMethod, class... Values>
    auto Pass(Values&&... values) {
        return scribe_.Pass<kOperation, kMethod>(id_, real_, std::forward<Values>(values)...);
    }
    template <Operation kOperation, auto kMethod>
    std::int32_t Begin(const std::vector<TVL::CoreElement*>& owners);

    Scribe& scribe_;
    Owners& owners_;
    Nodes& nodes_;
    ObjectId id_;
    TVL::AdaptorInterface* real_;
};

}  // namespace recorder
