#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "headless/session.h"
#include "player/perform.h"
#include "player/recovery/missing_work.h"
#include "player/recovery/recovery_core.h"

namespace player {

// Makes the calls of missing work once more in the scene that is open, on nodes that are found
// again in it.
class MakingAgain {
  public:
    MakingAgain(const recorder::TapeSession& tape, const MissingWork& work, RecoveryCore& core,
                headless::Session& session);
    ~MakingAgain();  // gives back what was lent
    MakingAgain(const MakingAgain&) = delete;
    MakingAgain& operator=(const MakingAgain&) = delete;

    // What of the scene the calls will write over, a line each.
    std::vector<std::string> Overwritten();

    // Inside an undo group.
    void MakeCalls();

    // A line each; of equal ones the first tells how many there were.
    std::vector<std::string> Lost() const;

    // What a node of the tape is called in the host; else what the tape calls it.
    std::string NameOf(ObjectId node);

  private:
    struct Found {
        std::uint32_t handle = 0;
        RecoveryCore::MarkedNode* marked = nullptr;
    };
    void BindAdaptor();
    void BindNodes();
    enum class Likeness { kMarkAndName, kMark, kName };
    Found FindInScene(const TapeNode& node, Likeness likeness);
    bool Bind(const TapeNode& node, Likeness likeness);
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
    void SeeRecording(const Record& call, const Performed& performed);
    void Lose(const std::string& what, const Record& call);
    TVL::CMesh MeshOf(recorder::MeshId id);

    const recorder::TapeSession& tape_;
    const MissingWork& work_;
    RecoveryCore& core_;
    LiveObjects& objects_;
    headless::Session& session_;

    std::vector<const TapeNode*> unbound_;
    std::set<std::uint32_t> usedHandles_;
    std::vector<TVL::CoreNode*> borrowed_;  // snapshot nodes that stand for some of the tape's
    std::map<ObjectId, Lent> lent_;         // snapshots that are out
    std::size_t recordings_ = 0;            // that are open here
    std::map<ObjectId, std::string> names_;
    struct Loss {
        std::size_t count = 0;
        std::uint64_t firstCall = 0;
    };
    std::map<std::string, Loss> losses_;
};

}  // namespace player
