#include "headless/scene_view.h"
#include "host/interface.h"
#include "replay_core/module/replay_core.h"
#include "replay_core/state/load_state.h"
#include "replay_core/state/stored_form.h"
#include "replay_core/state/stored_state.h"
#include "scene_state/node_tags.h"
#include "tests/support/allocations.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/base64_buffer.h"

namespace {

using replay::Take;
using Names = std::vector<std::string>;

std::string Text(const XMLNode& state) {
    return state.Write("\n", "\t", "");
}

// Takes of the example Core in a scene of the real adaptor's, saved and opened in memory.
class TakeState : public testing::Test {
  protected:
    TakeState() {
        takes = std::make_unique<replay::Takes>(adaptor);
        world.Core().onCall = [this](const std::string& call) {
            constexpr std::string_view set = "set state ";
            if (call.starts_with(set)) Load(call.substr(set.size()));
        };
    }

    void InGroup(const std::function<void()>& work) const {
        adaptor.BeginUndoGroup("Work");
        work();
        adaptor.EndUndoGroup();
    }

    // As recording does it: the nodes come within an undo group, which notes the capture.
    void Record(Take& take, const Names& names) const {
        InGroup([&] {
            for (const std::string& name : names)
                adaptor.CreateHelperNode(&take, name, nullptr, {}, &take.Book());
            take.Note({.capture = "captures/" + take.Name() + ".bvh",
                       .metresPerUnit = 0.056444,
                       .frameSeconds = 1.0 / 120,
                       .firstFrame = 3,
                       .endFrame = 40});
        });
    }

    void Load(const std::string& state) {
        loaded = replay::LoadState(adaptor, *takes, XMLNode(state));
        replay::WriteToTrace(loaded);
    }

    // Of a scene in which there is nothing yet.
    void LoadAnew(const std::string& state) {
        takes->Drop();
        Load(state);
    }

    std::string Whole() const { return Text(replay::WholeState(*takes)); }

    // The tags that a save would write, by host name.
    static std::map<std::string, std::string> SavedTags() {
        StoreSceneState();
        std::map<std::string, std::string> tags;
        for (const headless::NodeView& node : headless::Nodes())
            if (const auto tag = node.userProperties.find("TVL_tag");
                tag != node.userProperties.end())
                tags[node.name] = tag->second;
        ClearNodeTags();
        return tags;
    }

    // Each take below its parent, with the names of its nodes.
    Names Told() const {
        Names told;
        for (const auto& take : takes->All()) {
            told.push_back((take->Parent() ? take->Parent()->Name() : "") + '/' + take->Name());
            for (const TVL::CNode* node : take->Book().Nodes())
                told.back() += '|' + node->GetNodeName();
        }
        return told;
    }

    std::unique_ptr<replay::Takes> takes;  // outlives what names them in the world
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();
    replay::LoadedState loaded;  // the last call's
};

TEST_F(TakeState, IsThereOnceInAnOpenedSceneWhicheverRoadsItComesBy) {
    const std::string nasty = "a>b & \"c\"\n";
    const Names nastyNodes = {"Hips", "a>b<c&d\"e'f", "line\nfeed\ttab", "\xE5\xFF\x01", "",
                              "->",   "&#62;&amp;",   "trailing ",       " leading",     "a=b/c"};
    Names many;
    for (int i = 0; i < 40; ++i)
        many.push_back("Joint_" + std::to_string(i));
    const std::vector<Take*> all = takes->ForRecording(Names{nasty, nasty, "two", "three"});
    // Three deep, and beside each other from there on.
    EXPECT_EQ(Told(), (Names{'/' + nasty, nasty + '/' + nasty + " 2", nasty + " 2/two",
                             nasty + " 2/three"}));
    for (Take* take : all)
        Record(*take, take == all[0] ? nastyNodes : many);
    InGroup([&] {
        all[0]->Note(
            {.capture = "  ", .metresPerUnit = 1e-300, .frameSeconds = 0.1, .endFrame = 1});
    });
    const auto recordings = all[0]->Recordings();
    const Names told = Told();
    const std::string whole = Whole();
    EXPECT_NE(whole.find(" compressed=\"1\""), std::string::npos) << whole;
    const auto tags = SavedTags();

    for (const auto& [hasWhole, hasTags] : {std::pair(true, true), {true, false}, {false, true}}) {
        StoreSceneState();
        LoadAnew(hasWhole ? whole : "<TVL/>");
        Load("<TVL/>");
        EXPECT_TRUE(loaded.takes.empty());
        if (hasTags) GatherSceneState();
        ClearNodeTags();
        EXPECT_EQ(Told(), told);
        EXPECT_EQ(Whole(), whole);
        EXPECT_EQ(SavedTags(), tags);
        EXPECT_EQ(takes->All()[0]->Recordings(), recordings);
        for (const std::string& name : nastyNodes)
            EXPECT_NE(adaptor.FindNode(takes->Find(nasty), name), nullptr);
    }
    EXPECT_TRUE(world.MessageBoxes().empty());
    adaptor.FlushUndoBuffer();
    takes->Named("two").HandleExtension(TVL::kNodesBeingDeleted, nullptr);
    EXPECT_FALSE(takes->Named("two").IsThere());
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Whole(), whole);
}

// A plug-in with one node that is known by its number, and with more that is not known here.
std::string OldState(const std::string& name, const std::string& node, std::uint32_t number) {
    return "<TVL><TVL_Plugin version=\"2.5\"><type>Old</type><name>" + name +
           "</name><nodeinfo><node name=\"" + node + "\"><UID platform=\"adaptor_3dsmax9\">" +
           std::to_string(number) +
           "</UID></node></nodeinfo><inputprofile><x/></inputprofile></TVL_Plugin></TVL>";
}

TEST_F(TakeState, IsUndoneAndRedoneWithWhatWasDone) {
    Load(OldState("walk", "Lost", 9999));
    Take& walk = takes->Named("walk");
    Names known = {Whole()};
    const std::function<void()> acts[] = {
        [&] { Record(walk, {"Hips"}); },
        [&] { walk.Note({.capture = "other.bvh", .endFrame = 2}); },
        [&] { walk.StartAnew(); },
    };
    for (const auto& act : acts) {
        InGroup(act);
        known.push_back(Whole());
    }
    EXPECT_EQ(std::set<std::string>(known.begin(), known.end()).size(), 4U);
    EXPECT_TRUE(walk.Recordings().empty());
    EXPECT_TRUE(replay::WholeState(*takes).children.empty());
    EXPECT_TRUE(headless::Nodes().empty());
    for (std::size_t at = 3; at-- > 0;)
        EXPECT_TRUE(world.Session().Undo() && Whole() == known[at]) << Whole();
    for (std::size_t at = 1; at < 4; ++at)
        EXPECT_TRUE(world.Session().Redo() && Whole() == known[at]) << Whole();
    takes->Drop();
    world.Session().Undo();
    EXPECT_TRUE(replay::WholeState(*takes).children.empty());
}

TEST_F(TakeState, BelievesANumberOnlyIfTheNameAgreesAndNobodyHasTheNode) {
    Interface& host = *GetCOREInterface();
    INode* const node = host.CreateObjectNode(host.CreateCameraObject(0));
    node->SetName("old_Hips");
    const std::uint32_t number = node->GetHandle();
    Load(OldState("old", "Stranger", number));
    EXPECT_EQ(loaded.takes.at(0).nodesNotFound, Names{"Stranger"});
    EXPECT_EQ(TimesTraced("node not found: old: Stranger"), 1U);
    // The take is kept with what it misses, and with all else that was stored, until it is found.
    const std::string missing = Whole();
    LoadAnew(missing);
    EXPECT_EQ(Whole(), missing);
    for (const char* stored : {"<type>Old<", "<inputprofile>", "<UID"})
        EXPECT_NE(missing.find(stored), std::string::npos) << missing;

    LoadAnew(OldState("old", "Hips", number));
    EXPECT_EQ(loaded.takes.at(0).nodesClaimed, 1u);
    Record(takes->Named("walk"), {});
    Load(OldState("other", "Hips", number));
    EXPECT_EQ(loaded.takes.at(0).nodesNotFound, Names{"Hips"});
}

TEST_F(TakeState, IsTakenAsFarAsItMakesSenseAndTheRestTold) {
    const auto packed = [](const std::string& text) {
        return "<TVL_Plugin compressed=\"1\">" + text + "</TVL_Plugin>";
    };
    const std::string inner = packed("PGEvPg==");
    const Base64Buffer bomb(inner.data(), static_cast<std::int32_t>(inner.size()));
    LoadAnew(
        "<TVL>text<a/><TVL_Plugin/><TVL_Plugin><name>   </name></TVL_Plugin>"
        "<TVL_Plugin><name>x</name><nodeinfo><knot/><node/><node name=\"a\"><UID>-1x</UID>"
        "</node></nodeinfo></TVL_Plugin><TVL_Plugin><name>y</name><recordings>"
        "<recording metresPerUnit=\"nan\"/></recordings></TVL_Plugin>" +
        packed("****") + inner + packed(bomb.ToText()) + "</TVL>");
    EXPECT_EQ(Told(), (Names{"/Take", "/Take 2", "/x", "/y"}));
    const std::string unread = "a packed plug-in cannot be read";
    EXPECT_EQ(loaded.faults,
              (Names{"\"text\" is no plug-in", "\"a\" is no plug-in",
                     "the nodes of \"x\" hold what is no node",
                     "a recording of \"y\" cannot be read", unread, unread, unread}));
    LoadAnew("<other/>");
    EXPECT_EQ(loaded.faults, Names{"\"other\" is not this Core's state"});
    EXPECT_TRUE(takes->All().empty());
}

// Whether the work throws while its nth allocation fails; nothing if it makes fewer.
std::optional<bool> Throws(std::size_t nth, const std::function<void()>& work) {
    const FailingAllocation fault(nth);
    bool throws = false;
    try {
        work();
    } catch (const std::exception&) {
        throws = true;
    }
    return fault.HasFailed() ? std::optional(throws) : std::nullopt;
}

// Whatever the Core is in the middle of, it says so by what it throws, or has lost nothing.
TEST_F(TakeState, IsGivenAndTakenUpWholeOrNotAtAllWhereMemoryRunsOut) {
    for (Take* take : takes->ForRecording(Names{"walk", "run"}))
        Record(*take, {"Hips", "Knee", "Foot"});
    const std::string whole = Whole();
    const auto give = [&run = *takes->Find("run")](XMLNode& to) {
        run.HandleExtension(TVL::kSceneBeingSaved, &to);
    };
    XMLNode given(replay::form::kRoot, "");
    give(given);
    std::optional<bool> throws = false;
    for (std::size_t nth = 1; throws; ++nth) {
        XMLNode state(replay::form::kRoot, "");
        throws = Throws(nth, [&] { give(state); });
        EXPECT_TRUE(throws.value_or(false) || Text(state) == Text(given)) << nth;
    }

    takes->Drop();
    replay::ReplayCore core(adaptor);
    const XMLNode state(whole);
    const std::size_t before = Allocations();
    const XMLNode copy(state);
    throws = false;
    // Whoever calls makes a copy first.
    for (std::size_t nth = Allocations() - before + 1; throws; ++nth) {
        throws = Throws(nth, [&] { core.SetCoreState(state); });
        if (throws.value_or(false)) {
            EXPECT_THROW(core.GetCoreState(), std::exception) << nth;
        }
        EXPECT_EQ(Text(core.GetCoreState()), whole) << nth;
        core.ResetCore();
    }
}

}  // namespace
