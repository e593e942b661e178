#include "headless/copies.h"
#include "tests/headless/host_world.h"
#include "tests/support/allocations.h"

namespace {

// Refers to two others, and tells what it hears.
class Link final : public ReferenceTarget {
  public:
    explicit Link(std::string name, RefTargetHandle first = {}, RefTargetHandle second = {})
        : name_(std::move(name)) {
        ReplaceReference(0, first);
        ReplaceReference(1, second);
    }

    void GetClassName(HostString& name) override { name = "Link"; }
    SClass_ID SuperClassID() override { return 1; }
    Class_ID ClassID() override { return {1, 1}; }
    void DeleteThis() override { delete this; }
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int index) override { return targets_[index]; }
    void SetReference(int index, RefTargetHandle target) override {
        if (!isStubborn) targets_[index] = target;
    }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        told += name_ + " ";
        if (const auto act = std::exchange(onHeard, {})) act();
        return answer;
    }
    RefTargetHandle Clone(RemapDir& remap) override {
        auto* copy = new Link(name_, remap.CloneRef(targets_[0]), remap.CloneRef(targets_[1]));
        BaseClone(this, copy, remap);
        return copy;
    }

    // Who hears of a change of it, in turn.
    std::string Announce(bool propagate = true) {
        NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, propagate);
        return std::exchange(told, {});
    }

    std::function<void()> onHeard;  // once
    RefResult answer = REF_SUCCEED;
    bool isStubborn = false;

  private:
    std::string name_;
    RefTargetHandle targets_[2] = {};
};

std::size_t Links() {
    return headless::TakeCensus().objects["Link"];
}

using ReferencesTest = HostWorld;

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
}

TEST_F(ReferencesTest, AnObjectThatAnUndoCanMeetComesBackAtItsAddress) {
    auto* first = new Link("first");
    auto* second = new Link("second");
    auto* top = new Link("top", first);
    Step([&] { top->ReplaceReference(0, second); });
    EXPECT_FALSE(first->HasDependents());
    session.Undo();
    EXPECT_EQ(top->GetReference(0), first);
    EXPECT_TRUE(first->HasDependents() && !second->HasDependents());
    session.Redo();
    EXPECT_EQ(Links(), 3U);
    host.FlushUndoBuffer();
    theHold.Begin();
    top->ReplaceReference(0, new Link("third"));
    theHold.Cancel();
    EXPECT_EQ(top->GetReference(0), second);
    EXPECT_EQ(Links(), 2U);
    Step([&] { top->ReplaceReference(0, new Link("fourth")); });
    delete second;  // which empties the records that name it
    session.Undo();
    EXPECT_NE(top->GetReference(0), nullptr);
    top->isStubborn = true;
    delete static_cast<Link*>(top->GetReference(0));
    EXPECT_EQ(headless::TakeBreachLines(), Lines{"SetReference: it still points at what is freed"});
    top->DeleteMe();
}

TEST_F(ReferencesTest, TransferredReferencesKeepTheirOrderAndMakeNoCircle) {
    auto* from = new Link("from");
    auto* below = new Link("below");
    auto* to = new Link("to", nullptr, below);
    auto* first = new Link("first", from);
    auto* second = new Link("second", from);
    to->TransferReferences(from, false);
    EXPECT_EQ(to->Announce(), "second first ");
    Step([&] { from->TransferReferences(to, true); });
    EXPECT_EQ(first->GetReference(0), from);
    EXPECT_FALSE(below->HasDependents()) << "of what undo alone can bring back";
    session.Undo();
    EXPECT_EQ(second->GetReference(0), to);
    for (Link* above : {first, to}) {
        to->ReplaceReference(0, above);
        EXPECT_EQ(to->GetReference(0), nullptr);
    }
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 4U);
    first->DeleteMe();
    second->DeleteMe();
}

TEST_F(ReferencesTest, ADiamondIsToldNewestFirstUntilSomebodyStopsItAndIsCopiedAsOne) {
    auto* bottom = new Link("bottom");
    auto* left = new Link("left", bottom);
    auto* right = new Link("right", bottom);
    auto* top = new Link("top", left, right);
    EXPECT_EQ(bottom->Announce(), "right top left top ");
    EXPECT_EQ(bottom->Announce(false), "right left ");
    right->answer = REF_STOP;
    EXPECT_EQ(bottom->Announce(), "right ");
    RefTargetHandle copy = headless::CopyOf(*top);
    EXPECT_EQ(copy->GetReference(0)->GetReference(0), copy->GetReference(1)->GetReference(0));
    EXPECT_EQ(Links(), 8U);
    copy->DeleteMe();
    top->DeleteMe();
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
    EXPECT_EQ(target->Announce(), "third late third first first ");
    first->onHeard = [&] {
        for (Link* link : {first, third, late})
            link->ReplaceReference(0, nullptr);
    };
    EXPECT_EQ(target->Announce(), "late third first ");
    EXPECT_EQ(Links(), 3U) << "what nobody refers to any more has ended";
    for (Link* link : {first, third, late})
        link->DeleteMe();
}

TEST_F(ReferencesTest, ThePlaceOfOneWhoLeftInAWalkIsNotKept) {
    auto* target = new Link("target");
    auto* other = new Link("other", target);
    auto* restless = new Link("restless", target);
    const auto leaveAndComeBack = [&] {
        restless->ReplaceReference(0, nullptr);
        restless->ReplaceReference(0, target);
    };
    const auto announceTwice = [&] {
        restless->onHeard = [&] {
            restless->onHeard = leaveAndComeBack;
            target->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
        };
        target->Announce();
    };
    announceTwice();
    const std::size_t before = heapCounts.liveBytes;
    for (int round = 0; round < 100; ++round)
        announceTwice();
    EXPECT_EQ(heapCounts.liveBytes, before);
    other->DeleteMe();
    restless->DeleteMe();
}

}  // namespace
