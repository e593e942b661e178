#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "headless/copies.h"
#include "tests/headless/host_world.h"
#include "tests/support/allocations.h"

namespace {

std::vector<std::string>* told = nullptr;

// Holds any number of references, and tells what it hears.
class Link final : public ReferenceTarget {
  public:
    explicit Link(std::string name, int references = 1)
        : name_(std::move(name)), targets_(static_cast<std::size_t>(references)) {}

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
        auto* copy = new Link(name_ + " copy", NumRefs());
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
    static void Announce(Link* link) { link->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE); }

    std::vector<std::string> heard;
};

TEST_F(ReferencesTest, WhoStillPointsAtWhatIsFreedIsTold) {
    auto* const maker = new Link("maker");
    auto* const target = new Link("target");
    maker->ReplaceReference(0, target);
    maker->keepsPointers = true;
    target->DeleteThis();
    EXPECT_EQ(headless::TakeBreachLines(),
              std::vector<std::string>{"SetReference: it still points at what is freed"});
    maker->keepsPointers = false;
    maker->SetReference(0, nullptr);
    maker->DeleteMe();
}

TEST_F(ReferencesTest, AVeryLongChainEndsWithoutRecursion) {
    auto* top = new Link("top");
    for (int i = 0; i < 200'000; ++i) {
        auto* above = new Link("");
        above->ReplaceReference(0, top);
        top = above;
    }
    EXPECT_EQ(Links(), 200'001U);
    top->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, AnObjectThatAnUndoCanMeetComesBackAtItsAddress) {
    auto* top = new Link("top");
    auto* first = new Link("first");
    auto* second = new Link("second");
    top->ReplaceReference(0, first);
    Step([&] { top->ReplaceReference(0, second); });
    EXPECT_FALSE(first->HasDependents());
    EXPECT_EQ(Links(), 3U);

    session.Undo();
    EXPECT_EQ(top->GetReference(0), first);
    EXPECT_TRUE(first->HasDependents());
    EXPECT_FALSE(second->HasDependents());
    session.Redo();
    EXPECT_EQ(top->GetReference(0), second);

    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 2U);
    theHold.Begin();
    top->ReplaceReference(0, new Link("third"));
    theHold.Cancel();
    EXPECT_EQ(top->GetReference(0), second);
    EXPECT_EQ(Links(), 2U);
    top->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, ObjectsEndWithoutAskingForMemory) {
    auto* top = new Link("top", 3);
    for (int i = 0; i < 3; ++i) {
        auto* middle = new Link("middle");
        middle->ReplaceReference(0, new Link("bottom"));
        top->ReplaceReference(i, middle);
    }
    Step([&] { top->ReplaceReference(0, nullptr); });
    Step([&] { host.CreateObjectNode(CreateNewTriObject()); });
    session.Undo();
    const std::size_t before = Allocations();
    host.FlushUndoBuffer();
    top->DeleteMe();
    EXPECT_EQ(Allocations(), before);
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, TransferredReferencesKeepTheirOrderAndTheOldTargetAsAsked) {
    auto* first = new Link("first");
    auto* second = new Link("second");
    auto* from = new Link("from");
    auto* to = new Link("to");
    first->ReplaceReference(0, from);
    second->ReplaceReference(0, from);
    to->TransferReferences(from, false);
    Announce(to);
    EXPECT_EQ(heard, (std::vector<std::string>{"second", "first"}));
    EXPECT_EQ(Links(), 4U);

    Step([&] { from->TransferReferences(to, true); });
    EXPECT_EQ(first->GetReference(0), from);
    session.Undo();
    EXPECT_EQ(second->GetReference(0), to);
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 3U);
    first->DeleteMe();
    second->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, ACircleOfReferencesIsRefused) {
    auto* top = new Link("top");
    auto* below = new Link("below");
    top->ReplaceReference(0, below);
    below->ReplaceReference(0, top);
    top->ReplaceReference(0, top);
    EXPECT_EQ(below->GetReference(0), nullptr);
    EXPECT_EQ(top->GetReference(0), below);
    top->ReplaceReference(7, below);
    top->DeleteMe();
}

TEST_F(ReferencesTest, ADiamondIsToldNewestFirstUntilSomebodyStopsItAndIsCopiedAsOne) {
    auto* bottom = new Link("bottom");
    auto* left = new Link("left");
    auto* right = new Link("right");
    auto* top = new Link("top", 2);
    left->ReplaceReference(0, bottom);
    right->ReplaceReference(0, bottom);
    top->ReplaceReference(0, left);
    top->ReplaceReference(1, right);
    Announce(bottom);
    EXPECT_EQ(heard, (std::vector<std::string>{"right", "top", "left", "top"}));

    heard.clear();
    right->answer = REF_STOP;
    EXPECT_EQ(bottom->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE), REF_STOP);
    EXPECT_EQ(heard, std::vector<std::string>{"right"});

    heard.clear();
    right->answer = REF_SUCCEED;
    bottom->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, false);
    EXPECT_EQ(heard, (std::vector<std::string>{"right", "left"}));

    RefTargetHandle copy = headless::CopyOf(*top);
    EXPECT_EQ(Links(), 8U);
    RefTargetHandle below = copy->GetReference(0)->GetReference(0);
    EXPECT_EQ(below, copy->GetReference(1)->GetReference(0));
    EXPECT_NE(below, bottom);
    copy->DeleteMe();
    top->DeleteMe();
    EXPECT_EQ(Links(), 0U);
}

TEST_F(ReferencesTest, DependentsMayComeGoAndEndWhileTheyAreTold) {
    auto* target = new Link("target");
    auto* first = new Link("first");
    auto* second = new Link("second");
    auto* third = new Link("third");
    auto* late = new Link("late");
    for (Link* link : {first, second, third})
        link->ReplaceReference(0, target);
    third->onHeard = [&] {
        second->DeleteMe();
        late->ReplaceReference(0, target);
        Announce(target);
    };
    Announce(target);
    EXPECT_EQ(heard, (std::vector<std::string>{"third", "late", "third", "first", "first"}));

    heard.clear();
    first->onHeard = [&] {
        for (Link* link : {first, third, late})
            link->ReplaceReference(0, nullptr);
    };
    Announce(target);
    EXPECT_EQ(heard, (std::vector<std::string>{"late", "third", "first"}));
    EXPECT_EQ(Links(), 3U);
    for (Link* link : {first, third, late})
        link->DeleteMe();
}

TEST_F(ReferencesTest, AnObjectThatItsCreatorDestroysEmptiesTheRecordsThatNameIt) {
    auto* top = new Link("top");
    auto* first = new Link("first");
    auto* second = new Link("second");
    top->ReplaceReference(0, first);
    Step([&] { top->ReplaceReference(0, second); });
    delete second;
    EXPECT_EQ(top->GetReference(0), nullptr);
    session.Undo();
    EXPECT_EQ(top->GetReference(0), nullptr);
    delete top;
    session.Redo();
    host.FlushUndoBuffer();
    EXPECT_EQ(Links(), 0U);
}

}  // namespace
