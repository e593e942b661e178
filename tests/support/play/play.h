#pragma once

#include <array>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/node.h"
#include "tests/support/play/choices.h"
#include "tests/support/play/rig.h"
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

// One thing that a Core does, or the user by way of the host. It looks up whatever it works on, so
// that it can be done at any moment; where there is nothing to work on, it does nothing.
enum class By { kCore, kUser };
struct Act {
    const char* name;
    void (*run)(Play&);
    By by = By::kCore;
};
std::span<const Act> Acts();

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
    Play();
    ~Play();
    Play(const Play&) = delete;
    Play& operator=(const Play&) = delete;

    // A Core that has left does nothing any more.
    void Do(const Act& act);

    // Every call that the adaptor makes to the Core, in words, when the Core has done in it what a
    // tidy one does: "attach", "detach", "get state", "set state", "reset", "show", "time", "stop",
    // "bind", "option node", "option", "deletion" and "saving" of a plug-in, "removed" and
    // "restored" of a node, "undone", "redone" and "released" of an undo chunk. It may throw.
    std::function<void(const std::string& moment)> onMoment;

    // Gives back all that the Core has open: groups, recordings, keyboard, snapshots.
    void Settle();

    // What does not hold, a line each; empty if all does. Groups and the like may be open.
    Faults Broken();

    // The same with nothing open, as after Settle.
    Faults BrokenAtRest();

    std::array<Rig, 2> rigs;  // before the world, which they outlive
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

    // Names of nodes whose scene node undo may take without a word, so that the adaptor's list may
    // go on holding them.
    std::set<std::string> loose;

    // For what ends a scene node that a record of the adaptor's may still bring a node back for: a
    // deletion outside every group, a step that ends in the middle of a deletion, and an undo in a
    // scene that goes.
    void ExcuseGoneNodes();
    bool IsSceneUnsure() const;  // what is made now may be gone in a moment without a word

    void Fail(std::string fault) { noted_.push_back(std::move(fault)); }
    void Hear(const std::string& moment);  // at the beginning of the call
    void Meet(const std::string& moment);  // and in its midst, unless the Core has left in it
    void ReleaseLast();                    // of what is lent, if anything is

    std::string NewName();     // for a node that is made or claimed now
    TVL::CoreNode* AnyNode();  // of the Core's; null if there is none
    Rig& OwnerOf(TVL::CoreNode* node);
    std::string AnyFile();  // of two scene files, of which none may exist

  private:
    void Answer(const std::string& call);
    void Load(const XMLNode& state);
    void Leave();
    void Vanish();
    bool IsAlive(const TVL::CNode* node) const;
    void FindUnsortedKeys(Faults& faults) const;
    void FindWrongNodes(Faults& faults);
    void FindFalseWords(Faults& faults);
    void FindWrongSnapshots(Faults& faults);

    Faults noted_;  // on the way
    int names_ = 0;
    bool isGone_ = false;     // from the end of `detach` to the next attach
    bool sceneGoes_ = false;  // the Core has just let go of it
};

// All nodes of the scene, parents before their children.
std::vector<INode*> SceneNodes();

// Whether a node hangs below another, or is that one.
bool IsBelow(INode* node, const INode* other);

}  // namespace play
