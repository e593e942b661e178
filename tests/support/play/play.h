#pragma once

#include <algorithm>
#include <array>
#include <set>
#include <span>

#include "controllers/transform_control.h"
#include "core_link/core_link.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "tests/support/play/well_formed.h"
#include "tests/support/world.h"

// A Core that can do all that a Core may do, at any moment, also in the middle of any call that the
// adaptor makes to it:
//
//     Play play;
//     play.onMoment = [&](const std::string& moment) { if (moment == "reset") play.Do(act); };
//     play.Session().NewScene();
//     play.Settle();
//     EXPECT_EQ(play.BrokenAtRest(), Faults());
//
// A program with plays has the resources of adaptor/attach_panel.rc.
namespace play {

class Play;

// All nodes of the scene, parents before their children.
std::vector<INode*> SceneNodes();

constexpr std::size_t kLargestScene = 24;  // nodes; whatever adds some does nothing beyond it

// One thing that a Core does, or the user by way of the host. It looks up whatever it works on, so
// that it can be done at any moment; where there is nothing to work on, it does nothing.
enum class By { kCore, kUser };
struct Act {
    const char* name;
    std::function<void(Play&)> run;
    int often = 1;  // in a long life; 0: rarely, since it ends much, -1: never of itself
    By by = By::kCore;
};
std::span<const Act> Acts();

// What the act "throw" throws, and the name of the undo group that it leaves open.
inline constexpr const char* kThrownOut = "thrown by the Core";

// Choices, read off a row of bytes: the same bytes, the same choices. Past the end of the row each
// choice is the first one. The bytes stay the caller's.
class Choices {
  public:
    explicit Choices(std::string_view bytes = {}) : bytes_(bytes) {}

    // From 0 to below `bound`, which is 1 to 256.
    int Below(int bound) {
        if (bytes_.empty()) return 0;
        const auto byte = static_cast<unsigned char>(bytes_.front());
        bytes_.remove_prefix(1);
        return byte % bound;
    }
    bool Chance() { return Below(2) == 1; }

    // One of a list that has at least one entry.
    template <class List>
    auto& OneOf(List& list) {
        return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
    }

  private:
    std::string_view bytes_;
};

// A plug-in of the Core's that owns nodes and listens to them, and does what a tidy one does: it
// stores and finds its nodes again, and lets all of them go when the user deletes any.
class Rig final : public TVL::CoreElement, public TVL::NodeListener {
  public:
    Rig(std::string name, Play& play);
    std::vector<int> ListExtensions() override;
    std::intptr_t HandleExtension(int id, void* argument) override;
    void OnNodeRemoved(TVL::CNode* node) override;
    void OnNodeRestored(TVL::CNode* node) override;

    const std::string& Name() const { return record_.name; }

    // Its nodes in the adaptor's list.
    std::vector<TVL::CoreNode*> Nodes();

    // Makes the nodes of a stored state of this plug-in its own again.
    void Load(const XMLNode& pluginState);

    // Ends a node, of which a group's record tells later and nobody otherwise.
    void Delete(TVL::CoreNode* node, bool withHostNode);

    // Makes of a snapshot node one of its own, if that can be, and ends the snapshot node.
    void Claim(TVL::CoreNode* found, const std::string& name);

    // Ends its nodes without a word, as when the scene goes.
    void Drop();

    // What is heard of a node from here on is heard afresh.
    void Forget(TVL::CNode* node) { heard.erase(node); }

    std::map<TVL::CNode*, bool> heard;  // the last word on a node: restored, or removed

  private:
    void Store(XMLNode& masters);
    void LetGo();

    TVL::PluginRecord record_;
    Play& play_;
};

using Faults = std::vector<std::string>;

// A snapshot that is out.
struct Lent {
    TVL::CoreNode* node;
    TVL::CSnapshot* snapshot;
    double seconds;
};

// A process has one at a time. Its end shuts the host down, and asserts what World does.
class Play {
  public:
    // Recorded, the Core plays through the flight recorder, and what that tells must be
    // well-formed.
    explicit Play(bool isRecorded = false);
    ~Play();

    // Gives back what is open and shuts down, now.
    void End();

    // A Core that has left does nothing any more.
    void Do(const Act& act) {
        if (act.by == By::kUser || !isGone_) act.run(*this);
    }

    // Every call that the adaptor makes to the Core, in words, when the Core has done in it what a
    // tidy one does: "attach", "detach", what the puppet notes, "option", "extensions", "deletion"
    // and "saving" of a plug-in, "removed" and "restored" of a node, "undone", "redone" and
    // "released" of an undo chunk. It may throw.
    std::function<void(const std::string& moment)> onMoment;

    // Gives back all that the Core has open: groups, recordings, keyboard, snapshots.
    void Settle();

    // What does not hold, a line each; empty if all does. Groups and the like may be open.
    Faults Broken();

    // The same with nothing open, as after Settle.
    Faults BrokenAtRest();

    std::unique_ptr<Recorded> recorded;  // null if it is not; this and the rigs outlive the world
    std::array<Rig, 2> rigs;
    World world;
    TVL::AdaptorInterface& Adaptor() { return world.Adaptor(); }
    headless::Session& Session() { return world.Session(); }

    // What acts decide by, and leave behind.
    Choices choices;
    std::vector<Lent> lent;
    int recordings = 0;         // begun and not ended
    int focuses = 0;            // the same for the keyboard
    int value = 0;              // the Core's own, which its undo chunks move
    int chunksAlive = 0;        // of these
    bool leftNoRecord = false;  // done what undo cannot know; whoever cares clears it
    bool sceneGoes = false;     // the Core has just let go of it

    // Names of nodes whose scene node undo may take without a word, so that the adaptor's list may
    // go on holding them.
    std::set<std::string> loose;

    // For what ends a scene node that a record of the adaptor's may still bring a node back for: a
    // deletion outside every group, a step that ends in the middle of a deletion, and an undo in a
    // scene that goes.
    void ExcuseGoneNodes();

    // Whether what is made now may be gone in a moment without a word.
    bool IsSceneUnsure() const { return theHold.RestoreOrRedoing() || sceneGoes; }

    void Fail(std::string fault) { noted_.push_back(std::move(fault)); }
    void Hear(const std::string& moment);  // at the beginning of the call
    void Meet(const std::string& moment);  // and in its midst, unless the Core has left in it
    template <class Work>
    void During(const char* moment, Work work) {
        Hear(moment);
        work();
        Meet(moment);
    }
    void ReleaseLast();  // of what is lent, if anything is

    // For what undo cannot know.
    Play& Unrecorded() {
        leftNoRecord = true;
        return *this;
    }

    // The adaptor's node behind one of the Core's; null if it is not there any more.
    CMAXNode* Behind(TVL::CNode* node) const;

    std::string NewName();                   // for a node that is made or claimed now
    std::vector<TVL::CoreNode*> AllNodes();  // of the Core's
    Rig& OwnerOf(TVL::CoreNode* node) {
        return rigs[std::ranges::count(rigs[1].Nodes(), node) > 0 ? 1 : 0];
    }

    // Null if there is none.
    TVL::CoreNode* AnyNode() { return AnyOf(AllNodes()); }
    INode* AnySceneNode() { return AnyOf(SceneNodes()); }
    template <class Node>
    Node* AnyOf(const std::vector<Node*>& nodes) {
        return nodes.empty() ? nullptr : choices.OneOf(nodes);
    }

    std::string File(const char* name) const { return (world.Folder() / name).string(); }
    std::string AnyFile() { return File(choices.Chance() ? "b.scene" : "a.scene"); }

  private:
    void Answer(const std::string& call);
    void Vanish();

    Faults noted_;  // on the way
    int names_ = 0;
    bool isGone_ = false;  // from the end of `detach` to the next attach
};

}  // namespace play
