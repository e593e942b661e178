#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "headless/session.h"
#include "player/recovery/missing_work.h"
#include "player/recovery/recovery_core.h"

namespace player {

class MakingAgain;

// Which work a scene is to be given.
struct RecoveryChoice {
    std::string scene;                   // the file; empty for a scene that is empty
    std::optional<std::size_t> session;  // of the tape, from 1 on; else that which knows the scene
    std::optional<std::uint64_t> after;  // the call up to which the scene has it all
    OpenGroups openGroups = OpenGroups::kLeftOut;
};

// What a session that came to no end holds behind its last scene, which no scene was saved with.
struct UnsavedWork {
    std::size_t session = 0;  // from 1 on
    Checkpoint base;
    bool hasOpenGroup = false;
};

// What to type to have it back, in that scene, or if that is empty in its own.
std::string CommandFor(const std::string& tape, const UnsavedWork& work,
                       const std::string& scene = {});

// What came back of a group.
struct RecoveredWork {
    WorkGroup group;
    std::vector<std::string> nodes;  // of it, by their names in the host
};

struct RecoveryReport {
    std::size_t session = 0;  // from 1 on
    std::string base;         // up to where the scene has it all, in a line
    std::string step;         // the label of the undo step; empty if none was made
    std::vector<RecoveredWork> recovered;
    std::vector<RecoveredWork> left;       // groups that did not come back
    std::vector<std::string> plainNodes;   // that no state names: no Core will claim them
    std::vector<std::string> overwritten;  // what the scene had in the place of it, a line each
    std::vector<std::string> lost;         // what could not be brought back, a line each
    bool hasLaterState = false;            // the Core's state is a later one than the scene's
    std::vector<UnsavedWork> others;       // of the tape's other sessions; the scene may lack it

    bool IsEmpty() const { return recovered.empty() && !hasLaterState; }
};

// Brings what a tape holds beyond a scene's last checkpoint into that scene. In this order:
//
//     Recovery recovery(tape, choice);       the work is found, unless that takes the open scene
//     CoreSeat seat(recovery.Core());        the session starts, with it in a Core's place
//     session.OpenScene(choice.scene)        unless that is empty
//     recovery.Perform(session)              one undo step
//     session.SaveScene(...)
//
// It outlives the session. What cannot be done, or told, is thrown as a std::runtime_error, and the
// scene is as it was then.
class Recovery {
  public:
    Recovery(const recorder::TapeContents& tape, RecoveryChoice choice);

    RecoveryCore& Core() { return core_; }

    // Of the host whose work is missing, for a scene that is empty; a scene's file has its own.
    headless::SessionSettings Settings() const;
    RecoveryReport Perform(headless::Session& session, const recorder::TapeProgress& progress = {});

  private:
    struct Candidate {
        std::size_t session;
        Checkpoint base;
    };
    std::optional<Candidate> FindNamed() const;
    std::optional<Candidate> FindByDigestOrBeginning() const;
    std::optional<Candidate> FindByStoredState() const;
    [[noreturn]] void RefuseToGuess() const;
    std::vector<std::size_t> Sessions() const;
    void MakeAsOneStep(const MissingWork& work, MakingAgain& making,
                       const recorder::TapeProgress& progress, RecoveryReport& report);

    const recorder::TapeContents& tape_;
    const RecoveryChoice choice_;
    std::string digest_;
    std::vector<std::vector<Checkpoint>> checkpoints_;  // of each session
    std::optional<Candidate> base_;
    RecoveryCore core_;
};

// Empty, or a line that says that the last session of a tape came to no end and holds work that no
// scene was saved with, and what to type. Empty also for what is no tape, or cannot be read, or
// is given up, and for one that is being written.
std::string WordOfUnsavedWork(const std::string& tape, recorder::TapeProgress progress);

}  // namespace player
