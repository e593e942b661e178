#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "headless/breaches.h"
#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

// Makes random changes to the scene. Positions are whole numbers, so that moving a node from one
// parent to another and back is exact and digests can be compared.
class Changes {
  public:
    Changes(Interface& host, std::uint32_t seed) : host_(host), random_(seed) {}

    void MakeOne() {
        switch (Below(14)) {
            case 0:
            case 1:
                return static_cast<void>(host_.CreateObjectNode(NewObject()));
            case 2:
                return host_.DeleteNode(AnyNode());
            case 3:
            case 4:
                AnyParent()->AttachChild(AnyNode(), Below(2));
                return static_cast<void>(headless::TakeBreaches());  // some below themselves
            case 5:
                return host_.SelectNode(AnyNode(), Below(2));
            case 6:
                return ChangeTheRest();
            default:
                if (INode* node = AnyNode()) Change(*node);
        }
    }

  private:
    int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
    TimeValue Time() { return 160 * Below(20); }
    const char* Word() {
        static constexpr const char* kWords[] = {"", "hip", "knee", "TVL_tag"};
        return kWords[Below(4)];
    }

    Object* NewObject() {
        switch (Below(3)) {
            case 0:
                return CreateNewTriObject();
            case 1:
                return host_.CreateCameraObject(0);
            default:
                return headless::NewSphere(1, 8);
        }
    }

    INode* AnyNode() {
        const auto nodes = headless::Nodes();
        if (nodes.empty()) return nullptr;
        const auto index = static_cast<std::size_t>(Below(static_cast<int>(nodes.size())));
        return host_.GetINodeByHandle(nodes[index].handle);
    }

    INode* AnyParent() {
        INode* node = Below(4) == 0 ? nullptr : AnyNode();
        return node ? node : host_.GetRootNode();
    }

    void Change(INode& node) {
        switch (Below(8)) {
            case 0:
                return node.Detach(Time(), 1);
            case 1:
                return node.SetName(Word());
            case 2:
                return node.Hide(Below(2) == 1);
            case 3:
                return node.SetUserPropString(Word(), Word());
            case 4:
                return ChangeCamera(node);
            case 5:
                return static_cast<void>(node.SetTMController(static_cast<Control*>(
                    host_.CreateInstance(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId))));
            case 6:
                return Clone(node);
            default:
                return Move(node);
        }
    }

    void Move(INode& node) {
        const Point3 place{static_cast<float>(Below(50)), static_cast<float>(Below(50)), 0};
        if (Below(2) == 0) AnimateOn();
        node.SetNodeTM(Time(), MovedBy(place));
        AnimateOff();
    }

    void Clone(INode& node) {
        if (headless::Nodes().size() > 60) return;
        INodeTab nodes;
        INode* const one = &node;
        nodes.Append(1, &one);
        host_.CloneNodes(nodes, {1, 0, 0}, Below(2) == 1, NODE_COPY, nullptr, nullptr);
    }

    void ChangeTheRest() {
        switch (Below(3)) {
            case 0:
                return host_.SetTime(Time());
            case 1:
                return host_.SetAnimRange({0, 160 + Time()});
            default:
                return host_.ClearNodeSelection();
        }
    }

    void ChangeCamera(INode& node) {
        if (node.GetObjectRef()->SuperClassID() != CAMERA_CLASS_ID) return;
        auto& camera = static_cast<CameraObject&>(*node.GetObjectRef());
        camera.SetFOVType(Below(3));
        camera.SetConeState(Below(2));
        camera.SetFOV(Time(), 1.0F / static_cast<float>(1 + Below(5)));
    }

    Interface& host_;
    std::mt19937 random_;
};

class SceneLawTest : public HostWorld {};

// A cancelled hold leaves no trace; then each step is undone and done again.
TEST_F(SceneLawTest, UndoThenRedoIsTheIdentityForEveryStep) {
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Changes changes(host, seed);
        std::vector<std::uint64_t> digests{headless::SceneDigest()};
        for (int step = 0; step < 25; ++step) {
            theHold.Begin();
            for (std::uint32_t i = 0; i <= seed % 4; ++i)
                changes.MakeOne();
            if (step % 5 == 4)
                theHold.Cancel();
            else
                theHold.Accept("step");
            if (session.UndoLabels().size() == digests.size())
                digests.push_back(headless::SceneDigest());
            else
                ASSERT_EQ(headless::SceneDigest(), digests.back());
        }
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = digests.size(); i-- > 1;) {
                ASSERT_TRUE(session.Undo());
                ASSERT_EQ(headless::SceneDigest(), digests[i - 1]) << "undoing step " << i;
            }
            ASSERT_FALSE(session.Undo());
            for (std::size_t i = 1; i < digests.size(); ++i) {
                ASSERT_TRUE(session.Redo());
                ASSERT_EQ(headless::SceneDigest(), digests[i]) << "redoing step " << i;
            }
            ASSERT_FALSE(session.Redo());
        }
        session.NewScene();
        ASSERT_EQ(headless::TakeCensus().objectCount, 1U) << "the root alone";
    }
}

// Undoing, dropping what could be redone, and changes outside every hold, in any order.
TEST_F(SceneLawTest, AnyMixOfRecordedAndUnrecordedChangesEndsClean) {
    for (std::uint32_t seed = 200; seed < 260; ++seed) {
        SCOPED_TRACE(seed);
        Changes changes(host, seed);
        const std::function<void()> acts[] = {
            [&] { session.Undo(); }, [&] { session.Redo(); }, [&] { changes.MakeOne(); },
            [&] { session.DeleteSelected(); }, [&] { Step([&] { changes.MakeOne(); }); }};
        std::mt19937 random(seed);
        for (int i = 0; i < 80; ++i)
            acts[std::min<std::size_t>(random() % 6, 4)]();
        session.NewScene();
        ASSERT_EQ(headless::TakeCensus().objectCount, 1U);
    }
}

TEST_F(SceneLawTest, TheDigestSeesWhatTellsTwoScenesApart) {
    INode* node = Add("node");
    INode* other = Add("other");
    const std::function<void()> changes[] = {
        [&] { node->SetName("another"); },
        [&] { node->AttachChild(other, 0); },
        [&] { node->Hide(true); },
        [&] { node->SetWireColor(1); },
        [&] { node->SetUserPropString("a", "bc"); },
        [&] { node->SetUserPropString("ab", "c"); },
        [&] { host.SelectNode(node); },
        [&] {
            Place(node, {1, 0, 0});
        },
        [&] { static_cast<TriObject*>(node->GetObjectRef())->GetMesh().setNumVerts(1); },
        [&] {
            AnimateOn();
            Place(node, {1, 0, 0});
        }};
    std::set<std::uint64_t> seen{headless::SceneDigest()};
    for (const auto& change : changes) {
        change();
        EXPECT_TRUE(seen.insert(headless::SceneDigest()).second) << &change - changes;
    }
    AnimateOff();
}

}  // namespace
