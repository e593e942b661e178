#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "headless/copies.h"
#include "tests/headless/host_world.h"
#include "tests/support/allocations.h"

namespace {

using Heard = std::vector<std::string>;
Heard* told = nullptr;

// Holds any number of references, and tells what it hears.
class Link final : public ReferenceTarget {
  public:
    explicit Link(std::string name, RefTargetHandle target = nullptr, int references = 1)
        : name_(std::move(name)), targets_(static_cast<std::size_t>(references)) {
        ReplaceReference(0, target);
    }

    void GetClassName(HostString& name) override { name = "Link"; }
    SClass_ID SuperClassID() override { return 1; }
    Class_ID ClassID() override { return {1, 1}; }
    void DeleteThis() override { delete this; }
    int NumRefs() override { return static_cast<int>(targets_.size()); }
    RefTargetHandle GetReference(int index) override { return targets_.at(Place(index)); }
    void SetReference(int index, RefTargetHandle target) override {
        if (target || !keepsPointers) targets_.at(Place(index)) = target;
    }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        if (told) told->push_back(name_);
        if (const auto act = std::exchange(onHeard, {})) act();
        return answer;
    }
    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Link(name_ + " copy", nullptr, NumRefs());
        for (int i = 0; i < NumRefs(); ++i)
            copy->ReplaceReference(i, remap.CloneRef(targets_[Place(i)]));
        BaseClone(this, copy, remap);
        return copy;
    }

    std::function<void()> onHeard;  // once
    RefResult answer = REF_SUCCEED;
    bool keepsPointers = false;  // also to what is freed

  private:
    static std::size_t Place(int index) { return static_cast<std::size_t>(index); }

    std::string name_;
    std::vector<RefTargetHandle> targets_;
};

class ReferencesTest : public HostWorld {
  protected:
    ReferencesTest() { told = &heard; }
    ~ReferencesTest() override { told = nullptr; }

    static std::size_t Links() { return headless::TakeCensus().objects["Link"]; }

    // Who hears of a change of the link, in turn.
    Heard Announce(Link* link, bool propagate = true) {
        heard.clear();
        link->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, propagate);
        return heard;
    }

    Heard heard;
};

TEST_F(ReferencesTest, WhoStillPointsAtWhatIsFreedIsTold) {
    auto* const target = new Link("target");
    auto* const maker = new Link("maker", target);
    maker->keepsPointers = true;
    target->DeleteThis();
    EXPECT_EQ(headless::TakeBreachLines(), Heard{"SetReference: it still points at what is freed"});
    maker->keepsPointers = false;
    maker->SetReference(0, nullptr);
    maker->DeleteMe();
}

TEST_F(ReferencesTest, ALongChainEndsWithoutRecursionAndWithoutAskingForMemory) {
    auto* top = new Link("top");
    for (int i = 0; i < 200'000; ++i)
        top = new Link("", top);
    Step([&] { host.CreateObjectNode(CreateNewTriObject()); });
    session.Undo();
    const std::size_t before = Allocations();
    host.FlushUndoBuffer();
    top->DeleteMe();
    EXPECT_EQ(Allocations(), before);
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, AnObjectThatAnUndoCanMeetComesBackAtItsAddress) {
    auto* first = new Link("first");
    auto* second = new Link("second");
    auto* top = new Link("top", first);
    Step([&] { top->ReplaceReference(0, second); });
    EXPECT_FALSE(first->HasDependents());
    session.Undo();
    EXPECT_EQ(top->GetReference(0), first);
    EXPECT_TRUE(first->HasDependents());
    EXPECT_FALSE(second->HasDependents());
    session.Redo();
    EXPECT_EQ(top->GetReference(0), second);
    EXPECT_EQ(Links(), 3U);
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 2U);
    theHold.Begin();
    top->ReplaceReference(0, new Link("third"));
    theHold.Cancel();
    EXPECT_EQ(top->GetReference(0), second);
    EXPECT_EQ(Links(), 2U);
    Step([&] { top->ReplaceReference(0, new Link("fourth")); });
    delete second;  // which empties the records that name it
    session.Undo();
    EXPECT_NE(top->GetReference(0), nullptr);
    top->DeleteMe();
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, TransferredReferencesKeepTheirOrderAndMakeNoCircle) {
    auto* from = new Link("from");
    auto* to = new Link("to");
    auto* first = new Link("first", from);
    auto* second = new Link("second", from);
    to->TransferReferences(from, false);
    EXPECT_EQ(Announce(to), (Heard{"second", "first"}));
    Step([&] { from->TransferReferences(to, true); });
    EXPECT_EQ(first->GetReference(0), from);
    session.Undo();
    EXPECT_EQ(second->GetReference(0), to);
    to->ReplaceReference(0, first);
    to->ReplaceReference(0, to);
    EXPECT_EQ(to->GetReference(0), nullptr);
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 3U);
    first->DeleteMe();
    second->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, ADiamondIsToldNewestFirstUntilSomebodyStopsItAndIsCopiedAsOne) {
    auto* bottom = new Link("bottom");
    auto* left = new Link("left", bottom);
    auto* right = new Link("right", bottom);
    auto* top = new Link("top", left, 2);
    top->ReplaceReference(1, right);
    EXPECT_EQ(Announce(bottom), (Heard{"right", "top", "left", "top"}));
    EXPECT_EQ(Announce(bottom, false), (Heard{"right", "left"}));
    right->answer = REF_STOP;
    EXPECT_EQ(Announce(bottom), Heard{"right"});
    RefTargetHandle copy = headless::CopyOf(*top);
    RefTargetHandle below = copy->GetReference(0)->GetReference(0);
    EXPECT_EQ(below, copy->GetReference(1)->GetReference(0));
    EXPECT_NE(below, bottom);
    EXPECT_EQ(Links(), 8U);
    copy->DeleteMe();
    top->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, DependentsMayComeGoAndEndWhileTheyAreTold) {
    auto* target = new Link("target");
    auto* first = new Link("first", target);
    auto* second = new Link("second", target);
    auto* third = new Link("third", target);
    auto* late = new Link("late");
    third->onHeard = [&] {
        second->DeleteMe();
        late->ReplaceReference(0, target);
        target->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    };
    EXPECT_EQ(Announce(target), (Heard{"third", "late", "third", "first", "first"}));
    first->onHeard = [&] {
        for (Link* link : {first, third, late})
            link->ReplaceReference(0, nullptr);
    };
    EXPECT_EQ(Announce(target), (Heard{"late", "third", "first"}));
    EXPECT_EQ(Links(), 3U);
    for (Link* link : {first, third, late})
        link->DeleteMe();
}

}  // namespace
