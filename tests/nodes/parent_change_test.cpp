#include <random>
#include <tuple>

#include "controllers/transform_control.h"
#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "tests/nodes/node_test.h"

namespace {

// What an undo must give back of a node: its place, and its controller to the byte, the cached key
// included.
using Seen = std::tuple<std::uint32_t, std::uint32_t, Control*, std::vector<std::byte>>;

// A matrix controller that can be adapted, but neither copied nor taken back by a formula.
class Uncopied final : public Control {
  public:
    void GetClassName(HostString& name) override { name = "Uncopied"; }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {77, 77}; }
    void DeleteThis() override { delete this; }
    int ChangeParents(TimeValue, const Matrix3&, const Matrix3&, const Matrix3&) override {
        return ++changes_;
    }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
    IOResult Save(ISave* save) override {
        save->BeginChunk(1);
        save->Write(&changes_, sizeof changes_, nullptr);
        save->EndChunk();
        return IO_OK;
    }

  private:
    int changes_ = 0;
};

class ParentChange : public NodeTest {
  protected:
    void SetUp() override {
        for (int i = 0; i < 6; ++i)
            NewNode();
    }

    // One random change.
    void Change() {
        switch (Below(9)) {
            case 0:
                return NewNode();
            case 1:
                if (headless::Nodes().size() > 4) host.DeleteNode(AnyNode());
                return;
            case 2:
                return SetOwn(*AnyNode(), MatrixOf(Below(7)));
            case 3:
            case 4:
                return Record(*AnyNode());
            case 5:
                return static_cast<void>(
                    AnyNode()->SetTMController(AnyNode()->GetTMController()));  // shared
            case 6:
                return AnyNode()->Detach(host.GetTime(), 1);
            default:
                return Attach(*AnyNode(), *AnyNode());
        }
    }

    std::vector<Seen> See() {
        std::vector<Seen> seen;
        for (const headless::NodeView& view : headless::Nodes()) {
            INode* const node = host.GetINodeByHandle(view.handle);
            node->GetNodeTM(host.GetTime());  // what a look evaluates moves no more afterwards
        }
        for (const headless::NodeView& view : headless::Nodes()) {
            INode* const node = host.GetINodeByHandle(view.handle);
            Control* const control = node->GetTMController();
            seen.emplace_back(
                view.handle, node->GetParentNode()->GetHandle(), control,
                headless::SavedBytes([&](ISave* save) { return control->Save(save); }));
        }
        return seen;
    }

    std::mt19937 random;
    Interface& host = *GetCOREInterface();

  private:
    int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    INode* AnyNode() {
        const auto nodes = headless::Nodes();
        const auto index = static_cast<std::size_t>(Below(static_cast<int>(nodes.size())));
        return host.GetINodeByHandle(nodes[index].handle);
    }

    void Attach(INode& parent, INode& child) {
        for (INode* above = &parent; above; above = above->GetParentNode())
            if (above == &child) return;
        parent.AttachChild(&child, 1);
    }

    void NewNode() {
        INode* const node = host.CreateObjectNode(CreateNewTriObject());
        if (Below(2) == 0) node->SetTMController(new TransformControl);
        if (Below(2) == 0) Record(*node);
        if (Below(2) == 0) SetOwn(*node, MatrixOf(Below(7)));
    }

    // Turned, moved, and scaled in one of several ways that cannot be inverted well.
    Matrix3 MatrixOf(int kind) {
        static constexpr Point3 kScales[] = {
            {1, 1, 1},  {0, 0, 0}, {1, 0, 1},        {1e-6F, 1e-6F, 1e-6F},
            {-1, 1, 1}, {3, 1, 7}, {0.1F, -5, 1e-3F}};
        Matrix3 matrix;
        matrix.SetRotate(Quat{0.1F, 0.7F, -0.1F, 0.7F});
        matrix.Scale(kScales[kind], false);
        matrix.SetRow(3, {static_cast<float>(Below(9)) / 7, 3.3F, static_cast<float>(Below(9))});
        matrix.ValidateFlags();
        return matrix;
    }

    void SetOwn(INode& node, const Matrix3& matrix) {
        node.SetNodeTM(host.GetTime(), matrix * node.GetParentNode()->GetNodeTM(host.GetTime()));
    }

    // Evaluating a parent at another time would move its cached key without a record.
    void Record(INode& node) {
        const int times = node.GetParentNode()->IsRootNode() ? 6 : 1;
        AnimateOn();
        for (int key = 0; key < 3; ++key)
            node.SetNodeTM(160 * Below(times), MatrixOf(Below(7)));
        AnimateOff();
    }
};

TEST_F(ParentChange, IsTakenBackAndMadeAgainToTheByteWhateverTheParentsScale) {
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        random.seed(seed);
        std::vector<std::vector<Seen>> seen{See()};
        for (int step = 0; step < 12; ++step) {
            theHold.Begin();
            for (std::uint32_t i = 0; i <= seed % 3; ++i)
                Change();
            std::vector<Seen> now = See();
            if (seed % 5 == 0 && step % 3 == 0) {
                theHold.Cancel();
                ASSERT_EQ(See(), seen.back()) << "cancelled at step " << step;
                continue;
            }
            theHold.Accept("step");
            if (world.Session().UndoLabels().size() == seen.size()) seen.push_back(std::move(now));
        }
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = seen.size(); i-- > 1;) {
                ASSERT_TRUE(world.Session().Undo());
                ASSERT_EQ(See(), seen[i - 1]) << "undoing step " << i;
            }
            for (std::size_t i = 1; i < seen.size(); ++i) {
                ASSERT_TRUE(world.Session().Redo());
                ASSERT_EQ(See(), seen[i]) << "redoing step " << i;
            }
        }
        host.FlushUndoBuffer();
    }
}

TEST_F(ParentChange, DoesNotAdaptWhatItCouldNotBringBack) {
    INode* const node = host.CreateObjectNode(CreateNewTriObject());
    node->SetTMController(new Uncopied);
    const std::vector<Seen> before = See();
    const auto attach = [&] { host.GetRootNode()->GetChildNode(0)->AttachChild(node); };
    theHold.Begin();
    attach();
    theHold.Accept("attach");
    world.Session().Undo();
    EXPECT_EQ(See(), before);
    host.FlushUndoBuffer();
    attach();
    EXPECT_NE(std::get<3>(See().back()), std::get<3>(before.back())) << "adapted with no hold open";
}

}  // namespace
