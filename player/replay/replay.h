#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "headless/core_seat.h"
#include "player/replay/causes.h"
#include "player/replay/played_session.h"

namespace player {

// The Core's side of a tape's sessions, in the seat of a Core, and what the host is to do beside.
// Whoever has a host gives it the seat, and goes on until nothing is left:
//
//     Replay replay(tape, 0, scenes);
//     ... the host starts, and attaches ...
//     while (const auto step = replay.NextStep()) {
//         ... does it ...
//         replay.WasDone();  // or Failed
//     }
//     ... the host ends ...
//     replay.Over();
class Replay final : public headless::CoreBetween {
  public:
    // From the first session on, with those behind it that were in the same host. The tape and the
    // scenes outlive it, and it the host. `progress` hears of the records of each session; where it
    // has that given up, it cannot be told how to go on.
    Replay(const recorder::TapeContents& tape, std::size_t first, ReplayScenes& scenes,
           recorder::TapeProgress progress);

    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& none) override;
    void Detach(CoreInterface* core, const DetachCore& none) override;

    struct Step {
        std::string text{};       // of `run`, with files by their names on the tape
        std::string digest{};     // of the scene that it reads, if it was noted
        bool isInferred = false;  // no note tells it
        bool isRepeated = false;  // until the adaptor is heard

        // If it is one that reads a scene, that was not there, or not read: nothing came of it.
        bool isWithoutScene = false;
    };

    // Ends when all is over, or the two have come apart.
    std::optional<Step> NextStep();

    // The step that was given last. True: it is to be done again. `isStep`: its words are those of
    // one.
    bool WasDone();
    void Failed(const std::string& why, bool isStep);
    void NoScene(const std::string& path);

    // Where the two came apart, in the session that was begun last; null while they have not.
    const Verdict* Over() const;

    std::size_t Calls() const;
    std::size_t Steps() const { return steps_; }
    std::size_t Played() const { return played_.size(); }

    // The session behind those that are played here.
    std::size_t End() const { return end_; }

  private:
    PlayedSession* Session() { return played_.empty() ? nullptr : played_.back().get(); }
    std::optional<Step> Noted(const recorder::Record& note);
    std::optional<Step> Inferred();
    std::optional<Step> Give(Step step);
    void QueueDeletion(const Cause& cause);
    bool HasMovedOn();
    Step TakeQueued();

    const recorder::TapeContents& tape_;
    ReplayScenes& scenes_;
    const recorder::TapeProgress progress_;
    std::size_t first_;
    std::size_t end_;
    std::vector<std::unique_ptr<PlayedSession>> played_;
    std::vector<std::unique_ptr<Causes>> causes_;  // of each
    std::vector<Step> queue_;                      // steps that are to come, in their order
    Step given_;
    std::size_t givenAt_ = 0;  // the place on the tape
    std::size_t givenIn_ = 0;  // sessions that were there
    bool wasNoted_ = false;    // the last step that was done
    std::string failure_;      // of that step
    bool hasFailed_ = false;   // it was understood, and could not be done
    std::size_t steps_ = 0;
};

}  // namespace player
