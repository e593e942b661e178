#include "host/notify.h"
#include "resources/resource_ids.h"
#include "tests/support/play/play.h"
#include "tests/support/trace.h"

// Every event that host, user or Core can cause, met at every call that it makes to the Core by
// everything that a Core, or the user through it, can do there: one thing, and another one in the
// middle of it. Whatever it was, the seams hold afterwards.
namespace {

using play::Act;
using play::Faults;
using play::Play;
using Names = std::vector<std::string_view>;

void Do(Play& play, const Names& names) {
    for (const std::string_view name : names) {
        const auto act = std::ranges::find(play::Acts(), name, &Act::name);
        if (act == play::Acts().end()) throw std::invalid_argument(std::string(name));
        play.Do(*act);
    }
}

// Two plug-ins with nodes, keys and stored state; all of it older than what can be undone. Upon it
// one step of the Core's that can be. The digest of the scene without that step.
std::uint64_t MakeScene(Play& play) {
    Do(play, {"begin group", "create helper", "create lens", "begin recording", "write",
              "write lens", "end recording"});
    play.choices = play::Choices("\1");  // the other plug-in
    Do(play, {"create helper", "end group"});
    play.Session().SaveScene(play.File("a.scene"));
    std::filesystem::copy_file(play.File("a.scene"), play.File("b.scene"));
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
const std::pair<const char*, Names> kSituations[] = {
    {"AtRest", {}},
    {"InATake",
     {"begin group", "begin recording", "write", "acquire", "request focus", "run or stop",
      "add chunk"}},
};

// Events ---------------------------------------------------------------------------------------

enum class Record {
    kWhole,
    kInGroup,  // if nobody ends the group that it opens
    kNone,     // of what it changes in the scene
};
using enum Record;
struct Event {
    std::string_view name;
    Record record;
    void (*happen)(Play&);
    Names acts;  // behind what happens
};
constexpr std::string_view kUserDeletes = "UserDeletes";
constexpr std::string_view kShutdown = "Shutdown";

void AnnounceOtherFile(Play& play) {
    int adding = 1;
    play.Session().Announce(NOTIFY_FILE_PRE_OPEN, &adding);
}

void PressConvertAll(Play& play) {
    TVL::Util::Message press(TVL::kButtonPressed, "convert");
    if (TVL::Util::MessageNode* const button = play.world.Core().convertButton.get())
        button->Broadcast(&press);
}

void UndoAndRedo(Play& play) {
    play.Session().Undo();
    play.Session().Redo();
}

const Event kEvents[] = {
    {"TimeMoves", kWhole, [](Play& play) { play.Session().SetTime(480); }, {}},
    {"StartPressed", kWhole, [](Play& play) { play.Session().PressButton(TVL::kStartButton); }, {}},
    {"ConvertAllPressed", kWhole, PressConvertAll, {}},
    {kUserDeletes, kWhole, [](Play& play) { play.Session().DeleteSelected(); }, {}},
    {"Undo", kWhole, [](Play& play) { play.Session().Undo(); }, {}},
    {"UndoAndRedo", kWhole, UndoAndRedo, {}},
    {"Cancel",
     kInGroup,
     nullptr,
     {"begin group", "create lens", "add chunk", "delete", "cancel group"}},
    {"Creation", kInGroup, nullptr, {"begin group", "create lens", "end group"}},
    {"CreationWithoutGroup", kNone, nullptr, {"create helper"}},
    {"Deletion", kInGroup, nullptr, {"begin group", "delete", "end group"}},
    {"Recording", kNone, nullptr, {"begin recording", "write", "set time", "end recording"}},
    {"Save", kWhole, [](Play& play) { play.Session().SaveScene(play.File("a.scene")); }, {}},
    {"FailingSave", kWhole, [](Play& play) { play.Session().SaveScene(play.File("no/way")); }, {}},
    {"Open", kNone, [](Play& play) { play.Session().OpenScene(play.File("b.scene")); }, {}},
    {"HostMerges", kNone, [](Play& play) { play.Session().MergeScene(play.File("b.scene")); }, {}},
    {"CoreMerges", kNone, nullptr, {"merge"}},
    {"NewScene", kNone, [](Play& play) { play.Session().NewScene(); }, {}},
    {"Reset", kNone, [](Play& play) { play.Session().Reset(); }, {}},
    {"OtherFileOpens", kWhole, AnnounceOtherFile, {}},
    {"Detach", kNone, nullptr, {"detach"}},
    {"DetachAndAttach", kNone, nullptr, {"detach", "attach"}},
    {"Flush", kNone, nullptr, {"flush"}},
    {kShutdown, kWhole, [](Play& play) { play.Session().ShutDown(); }, {}},
};

// Laws -----------------------------------------------------------------------------------------

// The acts come at one moment of the event: the second inside the first, if that makes a call to
// the Core, else behind it.
struct Plan {
    std::size_t moment;
    const Act* first;
    const Act* second;

    bool Has(std::string_view name) const {
        return first->name == name || (second && second->name == name);
    }
};

// What is done in no hold, or loses the steps before, undo cannot take back.
void DoInside(Play& play, const Event& event, const Act& act, bool isInsideAnother) {
    const std::string_view name = act.name;
    const bool endsGroup = name == "end group" || name == "cancel group";
    const bool endsGroupOfOthers = endsGroup && (isInsideAnother || event.record != kWhole);
    if (!theHold.Holding() || endsGroupOfOthers || name == "flush") play.leftNoRecord = true;
    // What one has ended and the other begun anew in the same call the adaptor cannot tell apart.
    if (name == "throw" && isInsideAnother) throw std::runtime_error(play::kThrownOut);
    play.Do(act);
}

// How many calls into the Core the event makes; at one of them, in `followedAt`, the plan is
// followed.
std::size_t Happen(Play& play, const Event& event, const Plan& plan, std::string& followedAt) {
    std::size_t met = 0;
    Plan left = plan;
    play.onMoment = [&](const std::string& moment) {
        if (met++ < plan.moment) return;
        if (left.first) followedAt = moment;
        if (const Act* const act = std::exchange(left.first, nullptr))
            DoInside(play, event, *act, false);
        if (const Act* const next = std::exchange(left.second, nullptr))
            DoInside(play, event, *next, true);
    };
    if (event.happen) event.happen(play);
    Do(play, event.acts);
    play.onMoment = nullptr;
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

std::ptrdiff_t NodesInScene(Play& play) {
    return std::ranges::count_if(play.AllNodes(),
                                 [](TVL::CoreNode* node) { return !node->GetName().empty(); });
}

// A Core that has thrown may have left nodes unclaimed.
void SaveAndOpen(Play& play, bool hasThrown) {
    Do(play, {"attach"});
    const std::size_t nodes = headless::Nodes().size();
    const std::ptrdiff_t owned = NodesInScene(play);
    const int value = play.value;
    ASSERT_EQ(play.Session().SaveScene(play.File("c.scene")).error, "");
    play.value = -1;
    ASSERT_EQ(play.Session().OpenScene(play.File("c.scene")).error, "");
    EXPECT_EQ(headless::Nodes().size(), nodes);
    const std::ptrdiff_t found = NodesInScene(play);
    EXPECT_TRUE(hasThrown ? found >= owned : found == owned) << found << " of " << owned;
    EXPECT_EQ(play.value, value);
    EXPECT_EQ(play.BrokenAtRest(), Faults()) << "opened again";
}

// Of some nodes the scene node goes without a word: made in a scene that is just being left,
// brought back by a cancel while the user deletes it, of an owner whose answer then is an
// exception, or brought back by a cancel behind a merge, which ends the step before.
void ExcuseNodesOutOfTheScene(Play& play, const Event& event, const Plan& plan) {
    const bool isCancelInDeletion = event.name == kUserDeletes && plan.Has("cancel group");
    if (event.record != kNone && !plan.Has("merge") && !isCancelInDeletion) return;
    for (TVL::CoreNode* node : play.AllNodes())
        if (node->GetName().empty()) play.loose.insert(node->GetNodeName());
}

// What the trace calls the calls, by the beginnings of their moments.
const std::pair<std::string_view, const char*> kCalls[] = {
    {"attach", "attach"},
    {"detach", "detach"},
    {"reset", "ResetCore"},
    {"show", "ShowCore"},
    {"time ", "NotifyTimeChanged"},
    {"get ", "GetCoreState"},
    {"set ", "SetCoreState"},
    {"stop", "StopCore"},
    {"option node", "GetOptionNode"},
    {"option", "GetOptionValue"},
    {"bind ", "BindOption"},
    {"extensions", "HasExtension of an owner"},
    {"deletion", "extension 43 of an owner"},
    {"saving", "extension 56 of an owner"},
    {"removed", "OnNodeRemoved"},
    {"restored", "OnNodeRestored"},
    {"undone", "Undo of an undo chunk"},
    {"redone", "Redo of an undo chunk"},
    {"released", "Release of an undo chunk"}};

// It is told in the trace, and no step of the user's.
void ExpectThrownOut(Play& play, const std::string& moment) {
    const auto* const call = std::ranges::find_if(
        kCalls, [&](const auto& row) { return moment.starts_with(row.first); });
    ASSERT_NE(call, std::end(kCalls)) << moment;
    const std::string line = std::string("Exception out of ") + call->second + ": ";
    EXPECT_GT(TimesTraced(line + play::kThrownOut + '\n'), 0U) << moment << Trace();
    EXPECT_EQ(std::ranges::count(play.Session().UndoLabels(), play::kThrownOut), 0);
}

// How many calls the event makes.
std::size_t TryPlan(Play& play, const Event& event, const Names& situation, const Plan& plan) {
    const std::uint64_t made = MakeScene(play);
    play.leftNoRecord = event.record == kNone;
    Do(play, situation);
    std::string moment;
    const std::size_t met = Happen(play, event, plan, moment);
    if (event.name == kShutdown || !plan.first) return met;
    play.world.Core().isRunning = false;
    play.Settle();
    if (plan.first->name == std::string_view("throw")) ExpectThrownOut(play, moment);
    ExcuseNodesOutOfTheScene(play, event, plan);
    EXPECT_EQ(play.BrokenAtRest(), Faults());
    UndoAndRedoEverything(play, made);
    SaveAndOpen(play, plan.Has("throw"));
    return met;
}

struct Outcome {
    std::size_t moments;
    std::string trace;
};

Outcome OutcomeOf(const Event& event, const Names& situation, const Plan& plan, bool isRecorded) {
    Play play(isRecorded);
    const std::size_t met = TryPlan(play, event, situation, plan);
    play.End();
    return {met, PlainTrace(play.world.Trace(), play.world.Folder().string())};
}

// With the flight recorder between, nothing is another.
std::size_t TryTwice(const Event& event, const Names& situation, const Plan& plan) {
    const Outcome plain = OutcomeOf(event, situation, plan, false);
    SCOPED_TRACE("recorded");
    const Outcome recorded = OutcomeOf(event, situation, plan, true);
    EXPECT_EQ(recorded.moments, plain.moments);
    EXPECT_EQ(recorded.trace, plain.trace);
    return plain.moments;
}

// The places of an event, a situation and an act in their tables.
using Case = std::tuple<std::size_t, std::size_t, std::size_t>;
class EventsAndActs : public testing::TestWithParam<Case> {};

// The second acts take turns, so that each meets each first act somewhere.
TEST_P(EventsAndActs, LeaveNothingBrokenAndLoseNothing) {
    const auto [event, situation, act] = GetParam();
    const auto tryPlan = [&met = kEvents[event], &open = kSituations[situation].second](
                             const Plan& plan) { return TryTwice(met, open, plan); };
    const std::span<const Act> acts = play::Acts();
    const std::size_t moments = tryPlan({0, nullptr, nullptr});
    for (std::size_t moment = 0; moment < moments; ++moment) {
        const std::size_t turn = event * std::size(kSituations) + situation + 5 * moment;
        const Act& second = acts[(act + turn) % acts.size()];
        SCOPED_TRACE("moment " + std::to_string(moment));
        tryPlan({moment, &acts[act], nullptr});
        SCOPED_TRACE(std::string("and then ") + second.name);
        tryPlan({moment, &acts[act], &second});
    }
}

std::string Title(const testing::TestParamInfo<Case>& info) {
    const auto [event, situation, act] = info.param;
    std::string title(kEvents[event].name);
    title.append(kSituations[situation].first).append("_").append(play::Acts()[act].name);
    std::ranges::replace_if(
        title, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return title;
}

INSTANTIATE_TEST_SUITE_P(Seams, EventsAndActs,
                         testing::Combine(testing::Range(std::size_t{0}, std::size(kEvents)),
                                          testing::Range(std::size_t{0}, std::size(kSituations)),
                                          testing::Range(std::size_t{0}, play::Acts().size())),
                         Title);

}  // namespace
