// A whole Core. The button of the adaptor's panel puts a ball into the scene and records two
// seconds in which it bounces away; pressed again, it records them anew on the ball that is there.
// One undo takes all of it back, and a ball that comes with a scene file is claimed again.

#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tvl/core_interface.h"

namespace {

// What a Core throws ends at the call that the adaptor made, and is told in the trace.
void Require(bool isSo, const char* elseThrown) {
    if (!isSo) throw std::runtime_error(elseThrown);
}

// In metres, Y up. The rows of a pose are as long as a host unit in metres, and stay as they are.
void PutWhereItIsAt(double time, TVL::CNode* ball) {
    auto* const node = static_cast<TVL::CoreNode*>(ball);   // as every node is
    auto* const pose = node->AcquireSnapshot(time + 1e-6);  // a hair late: times are cut to ticks
    if (!pose) return;                                      // nothing is behind it in the host
    TVL::CMatrix4 world = pose->GetWorldTransform();
    world[3][0] = time;
    world[3][1] = std::abs(std::sin(std::numbers::pi * time));
    world[3][2] = 0;
    pose->SetWorldTransform(world);
    node->ReleaseSnapshot(pose);
}

class HelloCore final : public CoreInterface, public TVL::CoreElement, public TVL::NodeListener {
  public:
    explicit HelloCore(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) { plugin = &record_; }
    // Undo records name balls, and by them their owner and listener: they go before it does.
    ~HelloCore() override {
        ResetCore();
        adaptor_.FlushUndoBuffer();
    }

    // The button. What is done in the group is one step for the user, or not done.
    void ShowCore(TVL::WindowHandle) override {
        Require(adaptor_.BeginUndoGroup("Bounce") == 0, "no undo group can be opened");
        try {
            if (balls_.empty()) MakeBall();
            RecordBounce();
        } catch (...) {
            adaptor_.CancelUndoGroup();
            throw;
        }
        Require(adaptor_.EndUndoGroup() == 0, "not all of the bounce was recorded");
        adaptor_.ForceRedraw();
    }

    // All state lies with the balls, and goes where they go: it is asked of their owner.
    XMLNode GetCoreState() override { return XMLNode("TVL", ""); }
    std::vector<int> ListExtensions() override { return {TVL::kNodesBeingDeleted}; }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kNodesBeingDeleted) DeleteBalls();
        if (id != TVL::kSceneBeingSaved || !argument) return 0;
        XMLNode part("TVL_Plugin", "");
        part.AddChild(XMLNode("name", record_.name));
        XMLNode& balls = part.AddChild(XMLNode("nodeinfo", ""));
        for (const TVL::CNode* ball : balls_)
            balls.AddChild(XMLNode("node", "")).attributes["name"] = ball->GetNodeName();
        static_cast<XMLNode*>(argument)->AddChild(XMLNode("masternode", "")).AddChild(part);
        return 0;
    }
    void SetCoreState(XMLNode state) override {
        bool isAllOurs = true;
        for (const auto& part : state.children)
            if (part->Child("name").Text() == record_.name)
                ClaimBalls(part->Child("nodeinfo"));
            else
                isAllOurs = false;
        // What a Core throws at stays stored, for the Core that it belongs to.
        Require(isAllOurs, "the scene holds the state of another Core");
    }
    void ResetCore() override {
        for (TVL::CNode* ball : std::exchange(balls_, {}))
            static_cast<TVL::CoreNode*>(ball)->Destroy();
    }

    // A ball goes when it is deleted or its making undone, and comes when it is made or brought
    // back.
    void OnNodeRemoved(TVL::CNode* ball) override { std::erase(balls_, ball); }
    void OnNodeRestored(TVL::CNode* ball) override { balls_.push_back(ball); }

    void NotifyTimeChanged(double) override {}
    bool IsCoreRunning() override { return false; }
    void StopCore() override {}
    TVL::Util::MessageNode* GetOptionNode(int, int) override { return nullptr; }
    void BindOption(int, int) override {}
    void GetOptionValue(int, bool*) override {}

  private:
    void MakeBall() {
        TVL::CMesh mesh;  // in host units, from the ball's own place
        mesh.vertices = {{4, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, -4, 0}, {0, 0, 4}, {0, 0, -4}};
        mesh.faces = {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4, 1, 0, 5, 2, 1, 5, 3, 2, 5, 0, 3, 5};
        Require(adaptor_.CreateHelperNode(this, NewName(), nullptr, mesh, this), "no node is made");
    }

    void RecordBounce() {
        Require(adaptor_.BeginRecordingUnkeyed({this}) == 0, "no recording can begin");
        for (TVL::CNode* ball : balls_)
            for (int frame = 0; frame <= 2 * adaptor_.GetFrameRate(); ++frame)
                PutWhereItIsAt(frame / adaptor_.GetFrameRate(), ball);
        adaptor_.EndRecording();
    }

    void DeleteBalls() {  // which the user means is not told: all go, in the user's own step
        Require(adaptor_.BeginUndoGroup("Delete") == 0, "no undo group can be opened");
        for (TVL::CNode* ball : std::vector(balls_))
            static_cast<TVL::CoreNode*>(ball)->Delete(true);
        adaptor_.EndUndoGroup();
    }

    void ClaimBalls(const XMLNode& stored) {
        for (TVL::CNode* found : adaptor_.ClaimNodes(record_.name, stored)) {
            if (!found) continue;
            TVL::CNode* ball = static_cast<TVL::CoreNode*>(found)->Claim(this, NewName());
            if (ball) ball->SetListener(this);
            if (ball) balls_.push_back(ball);
            found->ReleaseNode(found);
        }
    }
    std::string NewName() { return "Ball" + std::to_string(++ballsNamed_); }  // never one twice
    TVL::AdaptorInterface& adaptor_;
    TVL::PluginRecord record_{"Hello"};
    std::vector<TVL::CNode*> balls_;  // the adaptor's
    int ballsNamed_ = 0;
};

}  // namespace

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return adaptor ? new HelloCore(*adaptor) : nullptr;
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<HelloCore*>(core);
}
