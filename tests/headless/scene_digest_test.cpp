#include <set>

#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

class SceneDigest : public HostWorld {};

TEST_F(SceneDigest, SeesWhatTellsTwoScenesApart) {
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
        [&] { Place(node, Point3(1, 0, 0)); },
        [&] { static_cast<TriObject*>(node->GetObjectRef())->GetMesh().setNumVerts(1); },
        [&] {
            AnimateOn();
            Place(node, Point3(1, 0, 0));
            AnimateOff();
        }};
    std::set<std::uint64_t> seen{headless::SceneDigest()};
    for (const auto& change : changes) {
        change();
        EXPECT_TRUE(seen.insert(headless::SceneDigest()).second) << &change - changes;
    }
}

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

TEST_F(SceneDigest, IsBroughtBackOfWhatCannotBeCopiedByNotAdaptingItToAnotherParent) {
    INode* const parent = Add("parent");
    INode* const node = Add("node");
    node->SetTMController(new Uncopied);
    const std::uint64_t before = headless::SceneDigest();
    Step([&] { parent->AttachChild(node); });
    session.Undo();
    EXPECT_EQ(headless::SceneDigest(), before);
    host.FlushUndoBuffer();
    parent->AttachChild(node);
    node->Detach(0, 0);
    EXPECT_NE(headless::SceneDigest(), before) << "adapted with no hold open";
}

}  // namespace
