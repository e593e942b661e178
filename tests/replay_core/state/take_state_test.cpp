#include <functional>
#include <set>

#include "replay_core/state/stored_form.h"
#include "tests/replay_core/state/state_test.h"
#include "tests/support/trace.h"
#include "tvl/base64_buffer.h"
#include "tvl/ids.h"

namespace {

namespace form = replay::form;
using replay::StoredState;
using replay::Take;

const std::vector<std::string> kNastyNames = {
    "Hips",       "a>b<c&d\"e'f", "line\nfeed\ttab", "\xE5\xFF\x01", "",
    "&#62;&amp;", "trailing ",    " leading",        "a=b/c",        "->"};

TEST_F(StateTest, AnOpenedSceneHasItsTakesOnceWhicheverRoadsTheStateComesBy) {
    Names many;
    for (int i = 0; i < 40; ++i)
        many.push_back("Joint_" + std::to_string(i));
    const std::string nasty = "a>b & \"c\"\n";
    for (Take* take : takes->ForRecording(Names{nasty, nasty, "two", "three", "four"}))
        Record(*take, take->Name() == nasty ? kNastyNames : many);
    const Names takeNames = {nasty, nasty + " 2", "two", "three", "four"};
    EXPECT_EQ(TakeNames(), takeNames);
    adaptor.BeginUndoGroup("Record again");
    takes->Named(nasty).Note(
        {.capture = "  ", .metresPerUnit = 1e-300, .frameSeconds = 0.1, .endFrame = 1});
    adaptor.EndUndoGroup();
    const auto recordings = takes->Named(nasty).Recordings();
    const std::string whole = WholeText();
    EXPECT_NE(whole.find(" compressed=\"1\""), std::string::npos) << whole;
    const auto tags = SavedTags();

    for (const auto& [hasWhole, hasTags] : {std::pair(true, true), {true, false}, {false, true}}) {
        StoreSceneState();
        takes->Drop();
        if (hasWhole) Load(XMLNode(whole));
        Load(XMLNode("<TVL/>"));
        EXPECT_TRUE(loaded.takes.empty());
        if (hasTags) GatherSceneState();
        ClearNodeTags();

        EXPECT_EQ(TakeNames(), takeNames);
        EXPECT_EQ(WholeText(), whole);
        EXPECT_EQ(SavedTags(), tags);
        EXPECT_EQ(takes->All()[0]->Recordings(), recordings);
        EXPECT_EQ(NodeNames(*takes->All()[0]), kNastyNames);
        for (const std::string& name : kNastyNames)
            EXPECT_NE(adaptor.FindNode(takes->Find(nasty), name), nullptr);
        // Three deep, and beside each other from there on.
        EXPECT_EQ(takes->Find("two")->Parent(), takes->Find(nasty + " 2"));
        EXPECT_EQ(takes->Find("four")->Parent(), takes->Find(nasty + " 2"));
        EXPECT_EQ(takes->Find(nasty)->Parent(), nullptr);
    }
    EXPECT_TRUE(world.MessageBoxes().empty());
    adaptor.FlushUndoBuffer();
    takes->Named("four").HandleExtension(TVL::kNodesBeingDeleted, nullptr);
    EXPECT_FALSE(takes->Named("four").IsThere());
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(WholeText(), whole);
}

// A plug-in with one node that is known by its number, and with more that is not known here.
XMLNode OldState(const std::string& name, const std::string& node, std::uint32_t number) {
    return XMLNode("<TVL><TVL_Plugin version=\"2.5\"><type>Old</type><name>" + name +
                   "</name><nodeinfo><node name=\"" + node +
                   "\"><UID platform=\"adaptor_3dsmax9\">" + std::to_string(number) +
                   "</UID></node></nodeinfo><inputprofile><x/></inputprofile></TVL_Plugin></TVL>");
}

TEST_F(StateTest, WhatIsKnownOfATakeIsUndoneAndRedoneWithWhatWasDone) {
    Load(OldState("walk", "Lost", 9999));
    Take& walk = takes->Named("walk");
    Names known = {WholeText()};
    const auto done = [&](const std::function<void()>& work) {
        adaptor.BeginUndoGroup("Work");
        work();
        adaptor.EndUndoGroup();
        known.push_back(WholeText());
    };
    Record(walk, {"Hips"});
    known.push_back(WholeText());
    done([&] { walk.Note({.capture = "other.bvh", .endFrame = 2}); });
    done([&] { walk.StartAnew(); });
    EXPECT_EQ(std::set<std::string>(known.begin(), known.end()).size(), 4U);
    EXPECT_TRUE(walk.Recordings().empty());
    EXPECT_TRUE(replay::WholeState(*takes).children.empty());
    EXPECT_TRUE(headless::Nodes().empty());
    for (std::size_t at = 3; at-- > 0;) {
        ASSERT_TRUE(world.Session().Undo());
        EXPECT_EQ(WholeText(), known[at]);
    }
    for (std::size_t at = 1; at < 4; ++at) {
        ASSERT_TRUE(world.Session().Redo());
        EXPECT_EQ(WholeText(), known[at]);
    }
    takes->Drop();
    world.Session().Undo();
    EXPECT_TRUE(replay::WholeState(*takes).children.empty());
}

TEST_F(StateTest, ANumberIsBelievedOnlyIfTheNameAgreesAndNobodyHasTheNode) {
    Interface& host = *GetCOREInterface();
    INode* const node = host.CreateObjectNode(host.CreateCameraObject(0));
    node->SetName("old_Hips");
    const std::uint32_t number = node->GetHandle();
    Load(OldState("old", "Stranger", number));
    EXPECT_EQ(loaded.takes.at(0).nodesNotFound, Names{"Stranger"});
    EXPECT_EQ(TimesTraced("node not found: old: Stranger"), 1U);

    // The take is kept with what it misses, and with all else that was stored, until it is found.
    const std::string missing = WholeText();
    takes->Drop();
    Load(XMLNode(missing));
    EXPECT_EQ(WholeText(), missing);
    EXPECT_NE(missing.find("<inputprofile>"), std::string::npos);
    EXPECT_NE(missing.find("<UID"), std::string::npos);

    takes->Drop();
    Load(OldState("old", "Hips", number));
    EXPECT_EQ(loaded.takes.at(0).nodesClaimed, 1u);
    Record(takes->Named("walk"), {});
    Load(OldState("other", "Hips", number));
    EXPECT_EQ(loaded.takes.at(0).nodesNotFound, Names{"Hips"});
}

TEST_F(StateTest, StateThatMakesNoSenseIsTakenAsFarAsItGoesAndTold) {
    struct Case {
        std::string text;
        std::size_t takes;
        std::size_t faults;
    };
    const std::string bomb = "<TVL_Plugin compressed=\"1\">" + [] {
        const std::string inner = "<TVL_Plugin compressed=\"1\">PGEvPg==</TVL_Plugin>";
        return Base64Buffer(inner.data(), static_cast<std::int32_t>(inner.size())).ToText();
    }() + "</TVL_Plugin>";
    const Case cases[] = {
        {"", 0, 0},
        {"<TVL/>", 0, 0},
        {"<other/>", 0, 1},
        {"<TVL>text<a/></TVL>", 0, 2},
        {"<TVL><TVL_Plugin/></TVL>", 1, 0},
        {"<TVL_Plugin><name>   </name></TVL_Plugin>", 1, 0},
        {"<TVL_Plugin><name>x</name><nodeinfo><knot/><node/></nodeinfo></TVL_Plugin>", 1, 1},
        {"<TVL_Plugin><recordings><recording metresPerUnit=\"nan\"/></recordings></TVL_Plugin>", 1,
         1},
        {"<TVL_Plugin><nodeinfo><node name=\"a\"><UID>-1x</UID></node></nodeinfo></TVL_Plugin>", 1,
         0},
        {"<TVL_Plugin compressed=\"1\">****</TVL_Plugin>", 0, 1},
        {"<TVL_Plugin compressed=\"1\">PGEvPg==</TVL_Plugin>", 0, 1},
        {bomb, 0, 1},
    };
    for (const Case& given : cases) {
        takes->Drop();
        Load(XMLNode(given.text));
        EXPECT_EQ(takes->All().size(), given.takes) << given.text;
        EXPECT_EQ(loaded.faults.size(), given.faults) << given.text;
        for (const auto& take : takes->All())
            EXPECT_FALSE(take->Name().find_first_not_of(' ') == std::string::npos);
    }
}

}  // namespace
