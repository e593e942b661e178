#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>

#include "tvl/core_interface.h"

// A Core that goes each road that leads into the adaptor, for tapes to be made of: its button goes
// the one of the number that the host's time has in seconds.
namespace {

using TVL::CMatrix4;
using TVL::CoreNode;

class Chunk final : public TVL::CUndo {
  public:
    void Undo(bool) override {}
    void Redo() override {}
};

TVL::CMesh Pyramid(double size) {
    TVL::CMesh mesh;
    mesh.vertices = {{size, 0, 0}, {0, size, 0}, {-size, -size, 0}, {0, 0, size}};
    mesh.textureVertices = {{0, 0, 0}, {1, 0, 0}, {0.5, 1, 0}};
    mesh.faces = {0, 1, 3, 1, 2, 3, 2, 0, 3, 2, 1, 0};
    mesh.textureFaces = {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2};
    return mesh;
}

class RoadsCore final : public CoreInterface, public TVL::CoreElement, public TVL::NodeListener {
  public:
    explicit RoadsCore(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {
        plugin = &record_;
        adaptor_.SetErrorCode(&registry_);
        adaptor_.SetLog(&log_);
    }
    ~RoadsCore() override {
        ResetCore();
        adaptor_.FlushUndoBuffer();
        adaptor_.ClearLog();
        adaptor_.ClearErrorCode();
    }

    void ShowCore(TVL::WindowHandle) override {
        static constexpr void (RoadsCore::*kRoads[])() = {
            &RoadsCore::MakeNodes,  &RoadsCore::SetLook,      &RoadsCore::ReadMesh,
            &RoadsCore::RecordLens, &RoadsCore::GoAround,     &RoadsCore::RecordPoses,
            &RoadsCore::ChangeMind, &RoadsCore::AskHost,      &RoadsCore::DeleteOne,
            &RoadsCore::MissCalls,  &RoadsCore::Merge,        &RoadsCore::FollowCurve,
            &RoadsCore::LetGo,      &RoadsCore::StartRunning, &RoadsCore::StopAnswering};
        const auto road = static_cast<std::size_t>(adaptor_.GetCurrentTime());
        if (road >= std::size(kRoads)) throw std::runtime_error("there is no such road");
        (this->*kRoads[road])();
    }

    XMLNode GetCoreState() override {
        XMLNode state("TVL", "");
        state.AddChild(XMLNode("made", static_cast<std::uint32_t>(made_)));
        return state;
    }
    void SetCoreState(XMLNode state) override {
        for (const auto& part : state.children)
            if (part->Child("name").Text() == record_.name) Claim(part->Child("nodeinfo"));
    }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kNodesBeingDeleted)
            InGroup("Answer", [&] {
                for (CoreNode* node : std::vector(nodes_))
                    node->Delete(false);
            });
        if (id != TVL::kSceneBeingSaved || !argument) return 0;
        XMLNode part("TVL_Plugin", "");
        part.AddChild(XMLNode("name", record_.name));
        XMLNode& info = part.AddChild(XMLNode("nodeinfo", ""));
        for (const CoreNode* node : nodes_)
            info.AddChild(XMLNode("node", "")).attributes["name"] = node->GetNodeName();
        static_cast<XMLNode*>(argument)->AddChild(XMLNode("masternode", "")).AddChild(part);
        return 1;
    }
    std::vector<int> ListExtensions() override {
        return isAnswering_ ? std::vector{43, 56} : std::vector{56};
    }
    void ResetCore() override {
        for (CoreNode* node : std::exchange(nodes_, {}))
            node->Destroy();
    }
    void OnNodeRemoved(TVL::CNode* node) override {
        adaptor_.FindNode(this, node->GetNodeName());
        std::erase(nodes_, static_cast<CoreNode*>(node));
    }
    void OnNodeRestored(TVL::CNode* node) override {
        nodes_.push_back(static_cast<CoreNode*>(node));
        node->IsSnapshot();
    }
    void NotifyTimeChanged(double) override {
        if (!nodes_.empty()) nodes_.front()->GetName();
    }
    bool IsCoreRunning() override { return isRunning_; }
    void StopCore() override { isRunning_ = false; }
    TVL::Util::MessageNode* GetOptionNode(int option, int) override {
        return option == TVL::kConvertAllControllers ? &button_ : nullptr;
    }
    void BindOption(int, int) override {}
    void GetOptionValue(int option, bool* value) override {
        *value = option == TVL::kOptimisedControllers || made_ > 2;
    }

  private:
    void InGroup(const char* name, const std::function<void()>& work) {
        adaptor_.BeginUndoGroup(name);
        work();
        adaptor_.EndUndoGroup();
    }

    std::string NewName() { return "Node" + std::to_string(++made_); }

    void MakeNodes() {
        InGroup("Make", [&] {
            TVL::CNode* const thing =
                adaptor_.CreateHelperNode(this, NewName(), nullptr, Pyramid(7), this);
            adaptor_.CreateLensNode(this, NewName(), thing, this);
            adaptor_.AddUndoChunk(new Chunk);
        });
        adaptor_.FindNode(this, "Node1");
        adaptor_.GetNodes(this);
        adaptor_.ForceRedraw();
    }

    void SetLook() {
        CoreNode* const node = nodes_.front();
        TVL::CSnapshot_Helper* const look = node->AcquireHelperSnapshot();
        look->SetColor(0.25F, 0.5F, 1);
        look->SetWireframe(true);
        look->SetBackfaceCull(true);
        look->SetMesh(Pyramid(9));
        node->ReleaseHelperSnapshot(look);
        node->Hide();
        node->IsVisible();
        node->Show();
    }

    void ReadMesh() {
        CoreNode* const node = nodes_.front();
        TVL::CSnapshot_Mesh* const mesh = node->AcquireMeshSnapshot(0);
        mesh->GetMesh();
        double distance = 0;
        std::array<double, 3> normal{};
        mesh->IntersectRay({0.5, 0.5, 40}, {0, 0, -1}, &distance, &normal);
        mesh->IntersectRay({40, 40, 40}, {0, 0, 1}, nullptr, &normal);
        mesh->SetMesh(Pyramid(3));
        mesh->GetMesh();
        node->ReleaseMeshSnapshot(mesh);
    }

    void RecordLens() {
        CoreNode* const node = nodes_.back();
        InGroup("Lens", [&] {
            adaptor_.BeginRecording({this});
            for (int frame = 0; frame < 4; ++frame) {
                TVL::CSnapshot_Lens* const lens = node->AcquireLensSnapshot(frame / 30.0 + 1e-6);
                lens->SetFieldOfViewType(frame % 3);
                lens->SetFieldOfView(40 + frame);
                lens->SetTargetDistance(100 + frame);
                lens->GetFieldOfView();
                lens->GetFieldOfViewType();
                lens->GetTargetDistance();
                lens->GetTime();
                lens->GetLensTransform();
                node->ReleaseLensSnapshot(lens);
            }
            adaptor_.EndRecording();
        });
    }

    // Snapshot nodes, whether they stand for the same scene node, and copies.
    void GoAround() {
        CoreNode* const top = nodes_.front();
        for (int index = 0; index < top->GetChildCount(); ++index) {
            auto* const below = static_cast<CoreNode*>(top->GetChild(index));
            TVL::CNode* const above = below->GetParent();
            below->GetName();
            top->IsSameNode(static_cast<CoreNode*>(above));
            below->HandleExtension(TVL::kIsSameNode, static_cast<CoreNode*>(nodes_.back()));
            top->ReleaseNode(above);
            below->Destroy();
        }
        top->ListExtensions();
        top->HasExtension(TVL::kCloneBelow);
        top->HandleExtension(TVL::kBeginSelection, nullptr);
        top->Select();
        nodes_.back()->Select();
        top->HandleExtension(TVL::kEndSelection, nullptr);
        InGroup("Copy", [&] {
            CoreNode* const copy = top->Clone(true);
            auto* const below = reinterpret_cast<CoreNode*>(
                top->HandleExtension(TVL::kCloneBelow, static_cast<CoreNode*>(copy)));
            below->SetName("below the copy");
            below->SetParent(nullptr);
            below->Delete(true);
            copy->GetChildCount();
            top->ReleaseNode(copy);
        });
    }

    void WritePoses(double from, int frames) {
        for (int frame = 0; frame < frames; ++frame)
            for (CoreNode* node : nodes_) {
                TVL::CSnapshot* const pose = node->AcquireSnapshot(from + frame / 30.0 + 1e-6);
                CMatrix4 world = pose->GetWorldTransform();
                world[3][frame % 3] += 0.125 * (frame + 1);
                pose->SetWorldTransform(world);
                CMatrix4 local = pose->GetLocalTransform();
                local[3][2] += 1;
                pose->SetLocalTransform(local);
                pose->GetTime();
                node->ReleaseSnapshot(pose);
            }
    }

    void RecordPoses() {
        InGroup("Take", [&] {
            InGroup("inside", [&] {
                adaptor_.BeginRecording({this});
                WritePoses(0, 5);
                adaptor_.EndRecording();
            });
            nodes_.front()->DeleteAnimationFrom(3 / 30.0);
            adaptor_.BeginRecordingUnkeyed({this});
            WritePoses(1, 2);
            adaptor_.EndRecording();
        });
        TVL::CSnapshot* const pose = nodes_.front()->AcquireSnapshot(1.5 / 30.0);
        pose->GetWorldTransform();
        nodes_.front()->ReleaseSnapshot(pose);
    }

    void ChangeMind() {
        InGroup("Nothing", [&] {
            adaptor_.BeginUndoGroup("inside");
            adaptor_.AddUndoChunk(new Chunk);
            adaptor_.CreateHelperNode(this, NewName(), nullptr, Pyramid(1), this);
            nodes_.front()->Delete(true);
            adaptor_.IsHoldingUndo();
            adaptor_.CancelUndoGroup();
        });
        adaptor_.GetNodes(this);
    }

    void AskHost() {
        adaptor_.GetVersion();
        adaptor_.GetName();
        adaptor_.GetShortName();
        adaptor_.GetPlatformName();
        adaptor_.GetPlatformVersion();
        adaptor_.GetPlatformWindow();
        adaptor_.GetOptionsPanel();
        adaptor_.createMesh(nullptr, "none");
        adaptor_.GetFrameRate();
        adaptor_.GetFrameDuration();
        adaptor_.GetAnimationRange();
        adaptor_.SetAnimationRange({0.25, 2.5});
        adaptor_.GetAnimationRange();
        adaptor_.RequestFocus();
        adaptor_.SetCurrentTime(1.00015);
        adaptor_.GetCurrentTime();
        adaptor_.RestoreFocus();
        adaptor_.PerformUndo();
        nodes_.front()->HandleExtension(TVL::kUseHostController, nullptr);
        nodes_.front()->HandleExtension(TVL::kStopRecording, nullptr);
    }

    void DeleteOne() {
        InGroup("Delete", [&] { nodes_.back()->Delete(true); });
    }

    // What is refused, or has no effect.
    void MissCalls() {
        adaptor_.EndUndoGroup();
        adaptor_.EndRecording();
        adaptor_.AddUndoChunk(new Chunk);
        adaptor_.AddUndoChunk(nullptr);
        adaptor_.FindNode(this, "nobody");
        adaptor_.MergeModels("nowhere.scene");
        nodes_.front()->AcquireShapeSnapshot(0);
        nodes_.front()->HandleExtension(99, nullptr);
        nodes_.front()->SetParent(nodes_.front());
        nodes_.front()->ReleaseNode(nullptr);
    }

    void Merge() {
        for (TVL::CNode* node : adaptor_.MergeModels("brought.scene")) {
            if (!node) continue;
            static_cast<CoreNode*>(node)->GetName();
            node->ReleaseNode(node);
        }
    }

    // The shape is what the first node hangs below.
    void FollowCurve() {
        auto* const path = static_cast<CoreNode*>(nodes_.front()->GetParent());
        TVL::CSnapshot_Shape* const shape = path->AcquireShapeSnapshot(0);
        shape->GetCurveCount();
        shape->SetCurve(0);
        shape->GetCurve();
        shape->GetCurveLength();
        for (int quarter = 0; quarter <= 4; ++quarter) {
            shape->GetCurvePoint(quarter / 4.0);
            shape->GetCurveTangent(quarter / 4.0);
        }
        path->ReleaseShapeSnapshot(shape);
        path->Destroy();
    }

    void LetGo() {
        CoreNode* const node = nodes_.back();
        nodes_.pop_back();
        node->Unclaim();
        node->Claim(this, NewName())->SetListener(this);
        node->Destroy();
        adaptor_.GetNodes(this);
    }

    void StartRunning() { isRunning_ = true; }
    void StopAnswering() { isAnswering_ = false; }

    void Claim(const XMLNode& info) {
        for (TVL::CNode* found : adaptor_.ClaimNodes(record_.name, info)) {
            if (!found) continue;
            CoreNode* const node = static_cast<CoreNode*>(found)->Claim(this, NewName());
            if (node) node->SetListener(this);
            if (node) nodes_.push_back(node);
            found->ReleaseNode(found);
        }
    }

    TVL::AdaptorInterface& adaptor_;
    TVL::PluginRecord record_{"Roads"};
    TVL::ErrorCode registry_;
    TVL::Log log_;
    TVL::Util::MessageNode button_{"convert"};
    std::vector<CoreNode*> nodes_;  // the adaptor's
    int made_ = 0;
    bool isRunning_ = false;
    bool isAnswering_ = true;  // deletions by the user
};

}  // namespace

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return new RoadsCore(*adaptor);
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<RoadsCore*>(core);
}
