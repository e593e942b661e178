#pragma once

#include <limits>
#include <map>
#include <string>
#include <vector>

#include "headless/session.h"
#include "player/perform.h"
#include "player/recovery/found_nodes.h"

namespace player {

// Makes the calls of missing work once more in the scene that is open, on nodes that are found
// again in it.
class MakingAgain {
  public:
    MakingAgain(const recorder::TapeSession& tape, const MissingWork& work, RecoveryCore& core,
                headless::Session& session);

    // What of the scene the calls will write over, a line each.
    std::vector<std::string> Overwritten() const;

    // Inside an undo group. Throws a std::runtime_error if they are given up.
    void MakeCalls(const recorder::TapeProgress& progress);

    // A line each; of equal ones the first tells how many there were.
    std::vector<std::string> Lost() const;

    const FoundNodes& Nodes() const { return nodes_; }

  private:
    static constexpr double kNever = std::numeric_limits<double>::infinity();
    struct Times {  // in seconds
        double first = kNever;
        double last = -kNever;
    };
    std::map<std::string, Times> TimesWritten() const;
    void BindAdaptor();
    ObjectId Acquire(TVL::CoreNode& node, ObjectKind kind, double seconds);
    void GiveBackLoans();
    void Prepare(const MissingCall& missing);
    void SetTime(std::optional<double> seconds);
    void SetRecording(bool isRecording);
    void SetOptions(const MissingCall& missing);
    bool IsThere(ObjectId id);
    bool LendAgain(const MissingCall& missing, const Record& call);
    bool AreObjectsThere(const Record& call);
    void Make(const MissingCall& missing);
    void SeeAnswer(const MissingCall& missing, const Record& call, const Performed& performed);
    void SeeGivenAll(const Record& call, const std::vector<ObjectId>& expected,
                     const std::vector<ObjectId>& came);
    void SeeGiven(const Record& call, ObjectId expected, ObjectId came);
    void SeeRecording(const Record& call, const Performed& performed);
    void Lose(const std::string& what, const Record& call);

    const recorder::TapeSession& tape_;
    const MissingWork& work_;
    RecoveryCore& core_;
    LiveObjects& objects_;
    headless::Session& session_;

    FoundNodes nodes_;
    std::map<ObjectId, Lent> lent_;  // snapshots that are out
    std::size_t recordings_ = 0;     // that are open here
    struct Loss {
        std::size_t count = 0;
        std::uint64_t firstCall = 0;
    };
    std::map<std::string, Loss> losses_;
};

}  // namespace player
