#include "adaptor/max_adaptor_interface.h"
#include "host/animate.h"
#include "tests/nodes/node_test.h"
#include "tests/support/allocations.h"

// Each operation that asks for memory, with each of its allocations failing in turn. It is done
// whole or not at all, and what the Core gets is an answer.

namespace {

class Chunk final : public TVL::CUndo {
    void Undo(bool) override {}
    void Redo() override {}
};

class Exceptions : public NodeTest {
  protected:
    // Whether there is an answer, which there is not from one that an exception has ended.
    struct Operation {
        const char* name;
        std::function<bool()> call;
        bool hasHostSide = false;  // which the host can leave undone
    };

    static MaxAdaptorInterface& Own() { return *MaxAdaptorInterface::GetInstance(); }

    void Prepare(bool isRecording) {
        TVL::Log::GetInstance()->buffer.str("");
        hip = Helper("Hip", nullptr, Triangle());
        knee = Helper("Knee", hip);
        eye = Camera("Eye");
        ball = NodeOn(headless::NewSphere(2, 8)).release();
        mesh = Triangle();
        owners = {&rig};
        chunk = std::make_unique<Chunk>();
        file = (world.Folder() / "model.scene").string();
        listener.heard.clear();
        if (isRecording) {
            adaptor.BeginUndoGroup("take");
            adaptor.BeginRecording({&rig});
        }
        place = hip->AcquireSnapshot(1);
        look = hip->AcquireHelperSnapshot();
        lens = eye->AcquireLensSnapshot(1);
        faces = ball->AcquireMeshSnapshot(0);
    }

    void Leave() {
        while (RecordingInProgress().depth > 0)
            adaptor.EndRecording();
        while (adaptor.IsHoldingUndo())
            adaptor.CancelUndoGroup();
        while (Own().focus.focusCount > 0)
            adaptor.RestoreFocus();
        CMAXNode::liveInstances.ForEachFromLast([](CMAXNode& node) { node.Destroy(); });
        world.Session().NewScene();
    }

    // What user and Core see.
    std::string Standing() {
        std::ostringstream text;
        text << Scene() << '\n';
        for (const headless::NodeView& node : headless::Nodes())
            text << node.controllerClassName << node.keys.count << node.keys.last << node.hidden
                 << node.wireColour << node.objectClassName << '\n';
        text << Listed() << theHold.Holding() << Own().undo.undoGroups.size() << Animating()
             << world.Session().AnimateButtonEnabled() << world.Session().AcceleratorsEnabled()
             << RecordingInProgress().depth << adaptor.GetCurrentTime();
        return text.str();
    }

    void ExpectListInOrder() {
        EXPECT_TRUE(!listener.heard.ends_with("+New") || Find("New"));
        std::set<INode*> hosts;
        for (TVL::CNode* node : adaptor.GetNodes(&rig)) {
            INode* const host = static_cast<CMAXNode*>(node)->HostNode();
            EXPECT_TRUE(host && hosts.insert(host).second) << node->GetNodeName();
        }
    }

    void Sweep(const Operation& operation, bool isRecording) {
        SCOPED_TRACE(operation.name);
        Prepare(isRecording);
        const std::string before = Standing();
        const std::size_t nodes = headless::Nodes().size();
        const bool answer = operation.call();
        const std::string whole = Standing();
        const int depth = RecordingInProgress().depth;
        Leave();
        bool hasFailed = true;
        for (std::size_t nth = 1; hasFailed; ++nth) {
            SCOPED_TRACE(nth);
            Prepare(isRecording);
            bool isAnswered = false;
            {
                const FailingAllocation fault(nth);
                EXPECT_NO_THROW(isAnswered = operation.call());
                hasFailed = fault.HasFailed();
            }
            const std::string after = Standing();
            const auto told = TimesTraced(std::string("Exception out of ") + operation.name);
            if (!operation.hasHostSide) {
                EXPECT_TRUE(after == before || after == whole) << after << before << whole;
                EXPECT_TRUE(told > 0 || isAnswered == answer) << Trace();
                EXPECT_TRUE(told == 0 || headless::Nodes().size() == nodes);
            }
            EXPECT_TRUE(told == 0 || !isAnswered) << Trace();
            EXPECT_TRUE(RecordingInProgress().depth == (told ? isRecording : depth)) << Trace();
            ExpectListInOrder();
            Leave();
        }
    }

    Node* hip = nullptr;
    Node* knee = nullptr;
    Node* eye = nullptr;
    Node* ball = nullptr;
    TVL::CSnapshot* place = nullptr;
    TVL::CSnapshot_Helper* look = nullptr;
    TVL::CSnapshot_Lens* lens = nullptr;
    TVL::CSnapshot_Mesh* faces = nullptr;

    // Arguments and results that are not to be allocated while the operation runs.
    TVL::CMesh mesh;
    std::vector<TVL::CoreElement*> owners;
    std::string file;
    std::unique_ptr<TVL::CUndo> chunk;
};

TEST_F(Exceptions, DoNotReachTheCore) {
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8))->SetName("Model");
    ASSERT_EQ(world.Session().SaveScene((world.Folder() / "model.scene").string()).error, "");
    world.Session().NewScene();
    const TVL::CMatrix4 identity = TVL::CMatrix4::Identity();
    const Operation operations[] = {
        {"GetName", [&] { return !adaptor.GetName().empty(); }},
        {"GetName", [&] { return !static_cast<TVL::Util::MessageNode&>(Own()).GetName().empty(); }},
        {"CreateLensNode", [&] { return Camera("New", hip) != nullptr; }},
        {"CreateHelperNode", [&] { return Helper("New", hip, std::move(mesh)) != nullptr; }},
        {"createMesh", [&] { return adaptor.createMesh(nullptr, "New") != nullptr; }},
        {"GetNodes", [&] { return !adaptor.GetNodes(&rig).empty(); }},
        {"MergeModels", [&] { return !adaptor.MergeModels(std::move(file)).empty(); }, true},
        {"BeginUndoGroup", [&] { return adaptor.BeginUndoGroup("more") == 0; }},
        {"AddUndoChunk", [&] { return adaptor.AddUndoChunk(chunk.release()) == 0; }},
        {"EndUndoGroup", [&] { return adaptor.EndUndoGroup() == 0; }},
        {"CancelUndoGroup", [&] { return adaptor.CancelUndoGroup() == 0; }},
        {"PerformUndo", [&] { return adaptor.PerformUndo(); }},
        {"FlushUndoBuffer", [&] { return adaptor.FlushUndoBuffer() == 0; }},
        {"RequestFocus", [&] { return adaptor.RequestFocus(), false; }},
        {"BeginRecording", [&] { return adaptor.BeginRecording(std::move(owners)) == 0; }, true},
        {"BeginRecordingUnkeyed", [&] { return adaptor.BeginRecordingUnkeyed({}) == 0; }},
        {"GetOptionsPanel", [&] { return !adaptor.GetOptionsPanel().children.empty(); }},
        {"Hide", [&] { return hip->Hide(), false; }},
        {"Select", [&] { return hip->Select(), false; }},
        {"GetParent", [&] { return knee->GetParent() != nullptr; }},
        {"GetChild", [&] { return hip->GetChild(0) != nullptr; }},
        {"Claim", [&] { return ball->Claim(&rig, "Ball") != nullptr; }},
        {"AcquireSnapshot", [&] { return knee->AcquireSnapshot(0) != nullptr; }},
        {"AcquireMeshSnapshot", [&] { return knee->AcquireMeshSnapshot(0) != nullptr; }},
        {"AcquireMeshSnapshot", [&] { return ball->AcquireMeshSnapshot(0) != nullptr; }},
        {"SetParent", [&] { return knee->SetParent(eye), false; }},
        {"DeleteAnimationFrom", [&] { return hip->DeleteAnimationFrom(-1), false; }, true},
        {"SetName", [&] { return hip->SetName("Pelvis"), false; }},
        {"Delete", [&] { return hip->Delete(true), false; }, true},
        {"Delete", [&] { return knee->Delete(false), false; }, true},
        {"Delete", [&] { return ball->Delete(true), false; }, true},
        {"Clone", [&] { return hip->Clone(true) != nullptr; }},
        {"HandleExtension", [&] { return hip->HandleExtension(37, eye) != 0; }},
        {"HandleExtension", [&] { return hip->HandleExtension(17, nullptr) != 0; }, true},
        {"ListExtensions", [&] { return hip->HasExtension(37); }},
        {"SetWorldTransform", [&] { return place->SetWorldTransform(identity), false; }},
        {"SetLocalTransform", [&] { return place->SetLocalTransform(identity), false; }},
        {"SetColor", [&] { return look->SetColor(0, 1, 0), false; }},
        {"SetFieldOfView", [&] { return lens->SetFieldOfView(50), false; }},
        {"SetTargetDistance", [&] { return lens->SetTargetDistance(50), false; }},
        {"GetMesh", [&] { return !faces->GetMesh().faces.empty(); }},
    };
    for (const bool isRecording : {false, true})
        for (const Operation& operation : operations)
            Sweep(operation, isRecording);
}

TEST_F(Exceptions, WithoutAStatusAreToldByTheEndOfTheOutermostGroup) {
    knee = Helper("Knee", Helper("Hip"));
    for (const bool isCancelled : {false, true}) {
        adaptor.BeginUndoGroup("outer");
        adaptor.BeginUndoGroup("inner");
        {
            const FailingAllocation fault(1);
            EXPECT_EQ(knee->GetParent(), nullptr);
        }
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
        const int status = isCancelled ? adaptor.CancelUndoGroup() : adaptor.EndUndoGroup();
        EXPECT_EQ(TVL::ErrorCode::GetInstance()->GetByValue(status)->GetIdentifier(),
                  "ADAPTOR_EXCEPTION");
        EXPECT_FALSE(theHold.Holding());
        adaptor.BeginUndoGroup("next");
        EXPECT_EQ(adaptor.EndUndoGroup(), 0);
    }
}

// An undo that finds no memory can fail at the host's side; the scene node that is back is ours.
TEST_F(Exceptions, LoseNoNodeThatComesBack) {
    bool hasFailed = true;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        SCOPED_TRACE(nth);
        Prepare(false);
        InGroup("Remove", [&] { hip->Delete(true); });
        {
            const FailingAllocation fault(nth);
            try {
                world.Session().Undo();
            } catch (const std::bad_alloc&) {
            }
            hasFailed = fault.HasFailed();
        }
        EXPECT_TRUE(!Host("Rig_Hip") || Find("Hip")) << Standing() << Trace();
        Leave();
    }
}

}  // namespace
