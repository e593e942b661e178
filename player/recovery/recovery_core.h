#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "headless/core_seat.h"
#include "player/live_objects.h"
#include "player/recovery/checkpoints.h"
#include "recorder/stream/record_writer.h"

namespace player {

// The Core that sits beside a scene into which work is recovered. It knows nothing of its own: it
// takes whatever state is stored as it comes and gives it again when the scene is saved, or what is
// to stand in its place, and keeps every node that is marked as some Core's marked as it was. It
// outlives the session.
class RecoveryCore final : public headless::CoreBetween, public PlayedCore {
  public:
    CoreInterface* Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) override;
    void Detach(CoreInterface* core, const DetachCore& detach) override;
    std::span<const std::uint64_t> Answer(const Record& call) override;

    // Before a scene is opened: how many chunks with a whole state it has, and with plug-ins of
    // earlier versions. What cannot be given again as it was is left to the host to keep.
    void ExpectState(std::size_t wholes, std::size_t older);

    // Those of the adaptor that is attached.
    LiveObjects& Objects() { return *objects_; }

    // What the scene that was opened stores.
    const StoredState& Stored() const { return stored_; }

    // A node that came with the scene and its mark.
    struct MarkedNode {
        std::uint32_t handle = 0;
        std::string plugin;
        std::string name;
        TVL::CoreNode* node = nullptr;  // real; the adaptor's
        ObjectId owner = 0;
        bool isRenamed = false;
    };
    std::vector<MarkedNode>& Marked() { return marked_; }
    MarkedNode* FindMarked(std::uint32_t handle);  // null if it has no mark

    // A new snapshot node on the scene node of that handle, or null; the caller's to release.
    TVL::CoreNode* NodeOfHandle(std::uint32_t handle);

    // Has an owner of the tape's in place of the one that the mark named, and its name; or takes
    // that back.
    void Rename(MarkedNode& marked, ObjectId owner, const std::string& name);
    void TakeBackName(MarkedNode& marked);

    // Owners are called so; each is asked by its own id.
    void KnowOwners(const std::map<ObjectId, std::string>& plugins);

    // What is given from here on in place of what is stored.
    void SetState(const std::optional<XMLNode>& whole, const std::map<ObjectId, XMLNode>& parts);
    bool HasPartsOf(ObjectId owner) const { return parts_.contains(owner); }

    // Whether a Core can claim a node of that owner by that name: the owner gives parts of a state,
    // so that its nodes are marked, and these or the whole state hold the name anywhere.
    bool Mentions(ObjectId owner, const std::string& name) const;

    // How the Core answers for the adaptor's options from here on.
    void SetOption(int option, bool value) { options_[option] = value; }

    // All owners that the adaptor knows here.
    std::vector<ObjectId> Owners() const;

  private:
    void TakeState(const XMLNode& state);
    void ClaimMarkedNodes();
    ObjectId OwnerOfMark(const std::string& plugin);
    void LetGo();
    XMLNode GivenParts(ObjectId owner);

    std::optional<LiveObjects> objects_;
    recorder::RecordWriter answer_;

    std::size_t expectedWholes_ = 0;
    bool keepsStored_ = false;
    StoredState stored_;
    XMLNode whole_;
    std::map<std::string, std::vector<XMLNode>> storedParts_;  // by plug-in, as they stand in tags
    std::set<std::string> givenParts_;                         // in the save that is made
    std::vector<MarkedNode> marked_;
    std::map<std::string, ObjectId> ownersOfMarks_;
    std::map<ObjectId, std::string> plugins_;
    std::map<ObjectId, XMLNode> parts_;
    std::map<int, bool> options_;
};

}  // namespace player
