#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "command/core_stage.h"
#include "command/steps.h"

namespace headless {

// Thrown where a check has nothing to hold a Core to: why, in a few words.
struct NotApplicable {
    std::string why;
};

// A stage on which a Core is checked, by steps in the words of `run`, each told on stderr before it
// is done. What must not be in any check is a fault: what the watch finds, what the host forgives
// and another would not, and what is told or left on the host's heap at the end. What a check
// itself expects is thrown as a Failure.
class CheckStage {
  public:
    // Files of the check lie in the folder, and begin with its name.
    struct Place {
        std::string folder;
        std::string name;
        std::string File(const std::string& what) const;
    };
    CheckStage(const GuestChoice& guests, Place place, std::uint64_t seed);

    void Do(const std::string& step);   // fails the check if it fails
    bool Try(const std::string& step);  // false: it could not be done
    void Do(std::initializer_list<const char*> steps);

    // Presses the button of the adaptor's panel. NeedWork also skips the check if that has left the
    // scene as it was, for most of what is checked is about what a Core puts there.
    void Press();
    void NeedWork();

    // The button, where the Core's scene is no more than a means.
    void PressAndSave(const std::string& file);

    // A path that stands in a step.
    std::string Scene(const std::string& what) const;
    std::string ScenePath(const std::string& what) const { return place_.File(what + ".scene"); }

    static void Expect(bool isSo, const std::string& elseFails);

    // Every node that was stored has been claimed, as far as the adaptor has told.
    void ExpectClaimed() const { Expect(!hasGatherError_, "nodes of the scene were not claimed"); }

    CoreStage& Stage() { return stage_; }
    Session& Host() { return stage_.Host(); }
    const std::string& Core() const { return core_; }
    std::uint64_t Below(std::uint64_t count) { return random_() % count; }  // from the seed

    // Ends the host, and gives all faults, a line each.
    std::vector<std::string> End();

  private:
    void Perform(const Step& step);
    StageNews LookAround();

    Place place_;
    std::string core_;
    CoreStage stage_;
    StepScene scene_{stage_, {}};
    std::mt19937_64 random_;
    bool hasGatherError_ = false;
    std::vector<std::string> faults_;
};

}  // namespace headless
