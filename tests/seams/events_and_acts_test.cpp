#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "headless/scene_view.h"
#include "host/hold.h"
#include "host/notify.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/support/play/play.h"
#include "tvl/ids.h"

// Every event that host, user or Core can cause, met at every call that it makes to the Core by
// everything that a Core, or the user through it, can do there: one thing, and another one in the
// middle of it. Whatever it was, the seams hold afterwards.
namespace {

using play::Act;
using play::Faults;
using play::Play;

const Act& Named(std::string_view name) {
    for (const Act& act : play::Acts())
        if (act.name == name) return act;
    throw std::invalid_argument(std::string(name));
}

void Do(Play& play, std::initializer_list<const char*> names) {
    for (const char* name : names)
        play.Do(Named(name));
}

std::string File(const Play& play, const char* name) {
    return (play.world.Folder() / name).string();
}

// The scene ------------------------------------------------------------------------------------

// Two plug-ins with nodes, keys and stored state; all of it older than what can be undone. Upon it
// one step of the Core's that can be. The digest of the scene without that step.
std::uint64_t MakeScene(Play& play) {
    Do(play, {"begin group", "create helper", "create lens", "begin recording", "write",
              "write lens", "end recording"});
    const std::uint8_t ofTheOtherRig[] = {1};
    play.choices = play::Choices(ofTheOtherRig);
    Do(play, {"create helper", "end group"});
    play.Session().SaveScene(File(play, "a.scene"));
    std::filesystem::copy_file(File(play, "a.scene"), File(play, "b.scene"));
    std::vector<std::string> names;
    for (const headless::NodeView& node : headless::Nodes())
        names.push_back(node.name);
    play.Session().Select(names);
    Do(play, {"flush"});
    const std::uint64_t digest = headless::SceneDigest();
    Do(play, {"begin group", "create helper", "write", "add chunk", "delete", "end group"});
    return digest;
}

// What is open when the event comes.
struct Situation {
    const char* name;
    void (*arrange)(Play&);
};
constexpr Situation kSituations[] = {
    {"AtRest", [](Play&) {}},
    {"InATake",
     [](Play& play) {
         Do(play, {"begin group", "begin recording", "write", "acquire", "request focus",
                   "run or stop", "add chunk"});
     }},
};

// Events ---------------------------------------------------------------------------------------

void AnnounceOtherFile(Play& play) {
    int adding = 1;
    play.Session().Announce(NOTIFY_FILE_PRE_OPEN, &adding);
}

void PressConvertAll(Play& play) {
    TVL::Util::Message press(TVL::kButtonPressed, "convert");
    if (TVL::Util::MessageNode* const button = play.world.Core().convertButton.get())
        button->Broadcast(&press);
}

enum class Record {
    kWhole,
    kInGroup,  // if nobody ends the group that it opens
    kNone,     // of what it changes in the scene
};
struct Event {
    const char* name;
    void (*happen)(Play&);
    Record record = Record::kWhole;
};
constexpr const char* kUserDeletes = "UserDeletes";
constexpr const char* kShutdown = "Shutdown";
constexpr Event kEvents[] = {
    {"TimeMoves", [](Play& play) { play.Session().SetTime(480); }},
    {"StartPressed", [](Play& play) { play.Session().PressButton(StartButton); }},
    {"ConvertAllPressed", PressConvertAll},
    {kUserDeletes, [](Play& play) { play.Session().DeleteSelected(); }},
    {"Undo", [](Play& play) { play.Session().Undo(); }},
    {"UndoAndRedo",
     [](Play& play) {
         play.Session().Undo();
         play.Session().Redo();
     }},
    {"Cancel",
     [](Play& play) {
         Do(play, {"begin group", "create lens", "add chunk", "delete", "cancel group"});
     },
     Record::kInGroup},
    {"Creation",
     [](Play& play) {
         Do(play, {"begin group", "create lens", "end group"});
     },
     Record::kInGroup},
    {"CreationWithoutGroup", [](Play& play) { Do(play, {"create helper"}); }, Record::kNone},
    {"Deletion",
     [](Play& play) {
         Do(play, {"begin group", "delete", "end group"});
     },
     Record::kInGroup},
    {"Recording",
     [](Play& play) {
         Do(play, {"begin recording", "write", "set time", "end recording"});
     },
     Record::kNone},
    {"Save", [](Play& play) { play.Session().SaveScene(File(play, "a.scene")); }},
    {"FailingSave", [](Play& play) { play.Session().SaveScene(File(play, "no/where.scene")); }},
    {"Open", [](Play& play) { play.Session().OpenScene(File(play, "b.scene")); }, Record::kNone},
    {"HostMerges", [](Play& play) { play.Session().MergeScene(File(play, "b.scene")); },
     Record::kNone},
    {"CoreMerges", [](Play& play) { Do(play, {"merge"}); }, Record::kNone},
    {"NewScene", [](Play& play) { play.Session().NewScene(); }, Record::kNone},
    {"Reset", [](Play& play) { play.Session().Reset(); }, Record::kNone},
    {"OtherFileOpens", AnnounceOtherFile},
    {"Detach", [](Play& play) { Do(play, {"detach"}); }, Record::kNone},
    {"DetachAndAttach",
     [](Play& play) {
         Do(play, {"detach", "attach"});
     },
     Record::kNone},
    {"Flush", [](Play& play) { Do(play, {"flush"}); }, Record::kNone},
    {kShutdown, [](Play& play) { play.Session().ShutDown(); }},
};

// Laws -----------------------------------------------------------------------------------------

// The acts come at one moment of the event: the second inside the first, if that makes a call to
// the Core, else behind it.
struct Plan {
    std::size_t moment;
    const Act* first;
    const Act* second;

    bool Has(const char* name) const { return first == &Named(name) || second == &Named(name); }
};

// What is done in no hold, or loses the steps before, undo cannot take back.
void DoInside(Play& play, const Event& event, const Act& act, bool isInsideAnother) {
    const bool endsGroup = &act == &Named("end group") || &act == &Named("cancel group");
    const bool endsGroupOfOthers = endsGroup && (isInsideAnother || event.record != Record::kWhole);
    if (!theHold.Holding() || endsGroupOfOthers || &act == &Named("flush"))
        play.leftNoRecord = true;
    play.Do(act);
}

void Follow(Play& play, const Event& event, const Plan& plan) {
    play.onMoment = [&play, &event, plan = Plan(plan),
                     met = std::size_t{0}](const std::string&) mutable {
        if (met++ < plan.moment) return;
        if (const Act* const act = std::exchange(plan.first, nullptr))
            DoInside(play, event, *act, false);
        if (const Act* const next = std::exchange(plan.second, nullptr))
            DoInside(play, event, *next, true);
    };
}

std::size_t MomentsOf(const Event& event, const Situation& situation) {
    Play play;
    MakeScene(play);
    situation.arrange(play);
    std::size_t met = 0;
    play.onMoment = [&met](const std::string&) { ++met; };
    event.happen(play);
    return met;
}

void ExpectWhole(Play& play, std::uint64_t digest, const char* when) {
    EXPECT_EQ(play.BrokenAtRest(), Faults()) << when;
    const bool isSame = headless::SceneDigest() == digest;
    EXPECT_TRUE(isSame || play.leftNoRecord) << "another scene, " << when;
}

void UndoAndRedoEverything(Play& play, std::uint64_t undone) {
    const std::uint64_t done = headless::SceneDigest();
    while (play.Session().Undo()) {
    }
    ExpectWhole(play, undone, "all undone");
    while (play.Session().Redo()) {
    }
    ExpectWhole(play, done, "all redone");
}

// Those that are in the scene.
std::size_t OwnedNodes(Play& play) {
    std::size_t count = 0;
    for (play::Rig& rig : play.rigs)
        for (TVL::CoreNode* node : rig.Nodes())
            if (!node->GetName().empty()) ++count;
    return count;
}

// A Core that has thrown may have left nodes unclaimed.
void SaveAndOpen(Play& play, bool hasThrown) {
    Do(play, {"attach"});
    const std::size_t nodes = headless::Nodes().size();
    const std::size_t owned = OwnedNodes(play);
    const int value = play.value;
    ASSERT_EQ(play.Session().SaveScene(File(play, "c.scene")).error, "");
    play.value = -1;
    ASSERT_EQ(play.Session().OpenScene(File(play, "c.scene")).error, "");
    EXPECT_EQ(headless::Nodes().size(), nodes);
    const std::size_t found = OwnedNodes(play);
    EXPECT_TRUE(hasThrown ? found >= owned : found == owned) << found << " of " << owned;
    EXPECT_EQ(play.value, value);
    EXPECT_EQ(play.BrokenAtRest(), Faults()) << "opened again";
}

// Of some nodes the scene node goes without a word: made in a scene that is just being left,
// brought back by a cancel while the user deletes it, or by one behind a merge, which ends the step
// before.
void ExcuseNodesOutOfTheScene(Play& play) {
    for (play::Rig& rig : play.rigs)
        for (TVL::CoreNode* node : rig.Nodes())
            if (node->GetName().empty()) play.loose.insert(node->GetNodeName());
}

void TryPlan(const Event& event, const Situation& situation, const Plan& plan) {
    Play play;
    const std::uint64_t made = MakeScene(play);
    play.leftNoRecord = event.record == Record::kNone;
    situation.arrange(play);
    Follow(play, event, plan);
    event.happen(play);
    play.onMoment = nullptr;
    if (std::string_view(event.name) == kShutdown) return;
    play.world.Core().isRunning = false;
    play.Settle();
    const bool isUserDeletion = std::string_view(event.name) == kUserDeletes;
    if (event.record == Record::kNone || plan.Has("merge") ||
        (isUserDeletion && plan.Has("cancel group")))
        ExcuseNodesOutOfTheScene(play);
    EXPECT_EQ(play.BrokenAtRest(), Faults());
    UndoAndRedoEverything(play, made);
    SaveAndOpen(play, plan.Has("throw"));
}

// The places of an event, a situation and an act in their tables.
using Case = std::tuple<std::size_t, std::size_t, std::size_t>;
class EventsAndActs : public testing::TestWithParam<Case> {};

// The second acts take turns, so that each meets each first act somewhere.
TEST_P(EventsAndActs, LeaveNothingBrokenAndLoseNothing) {
    const auto [eventPlace, situationPlace, actPlace] = GetParam();
    const Event& event = kEvents[eventPlace];
    const Situation& situation = kSituations[situationPlace];
    const std::span<const Act> acts = play::Acts();
    const std::size_t moments = MomentsOf(event, situation);
    for (std::size_t moment = 0; moment < moments; ++moment) {
        const std::size_t turn = eventPlace * std::size(kSituations) + situationPlace + 5 * moment;
        const Act& second = acts[(actPlace + turn) % acts.size()];
        SCOPED_TRACE("moment " + std::to_string(moment));
        TryPlan(event, situation, {moment, &acts[actPlace], nullptr});
        SCOPED_TRACE(std::string("and then ") + second.name);
        TryPlan(event, situation, {moment, &acts[actPlace], &second});
    }
}

std::string Title(const testing::TestParamInfo<Case>& info) {
    const auto [event, situation, act] = info.param;
    std::string title = std::string(kEvents[event].name) + kSituations[situation].name + "_";
    for (const char letter : std::string_view(play::Acts()[act].name))
        title += std::isalnum(static_cast<unsigned char>(letter)) ? letter : '_';
    return title;
}

INSTANTIATE_TEST_SUITE_P(Seams, EventsAndActs,
                         testing::Combine(testing::Range(std::size_t{0}, std::size(kEvents)),
                                          testing::Range(std::size_t{0}, std::size(kSituations)),
                                          testing::Range(std::size_t{0}, play::Acts().size())),
                         Title);

}  // namespace
