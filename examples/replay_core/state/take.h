#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "replay_core/state/node_book.h"
#include "replay_core/state/read_state.h"
#include "tvl/adaptor_interface.h"
#include "tvl/xml_node.h"

namespace replay {

class Takes;

// What a scene file said of a take and the scene does not show.
struct StoredRest {
    std::string type = "Take";             // the plug-in's
    std::vector<StoredNode> missingNodes;  // for which the host had none
    std::vector<XMLNode> unknown;          // children of the plug-in that this Core does not know
    bool isLost = false;                   // not one of the nodes was found
};

// A capture in the scene: the owner of its nodes, under a name that no other take has, with the
// book of those that are there. Undo records name it, so it is kept until the Core is detached,
// also while none of its nodes is left.
class Take final : public TVL::CoreElement {
  public:
    Take(TVL::AdaptorInterface& adaptor, const Takes& all, std::string name);
    Take(const Take&) = delete;
    Take& operator=(const Take&) = delete;

    const std::string& Name() const { return record_.name; }
    NodeBook& Book() { return book_; }
    const NodeBook& Book() const { return book_; }

    // What its keys were recorded from, oldest first: once for each range of frames of a capture.
    const std::vector<Recording>& Recordings() const { return recordings_; }

    // The take was recorded. To be called inside the undo group of the recording, with which the
    // note is undone and redone.
    void Note(Recording recording);

    // Another capture is recorded in the place of this one: deletes the nodes and forgets what was
    // known. To be called inside the undo group of that recording, with which it is undone.
    void StartAnew();

    // The stored nodes that are not in the scene.
    std::vector<StoredNode> Missing() const;

    // As a scene file tells it.
    void SetRecordings(std::vector<Recording> recordings);

    // The take to which this one belongs, or null. It need not be in the scene.
    const Take* Parent() const { return parent_; }

    // Whether there is anything of it to store: a node in the scene, or word from a scene file of
    // nodes that were not found. A recording that is undone leaves nothing.
    bool IsThere() const { return !book_.Nodes().empty() || rest_.isLost; }

    StoredRest& Rest() { return rest_; }
    const StoredRest& Rest() const { return rest_; }

    // The user deletes some of the nodes : the others go with them, in the same undo
    // step, because a take with missing joints is no take. The scene is being saved :
    // the take's state goes with its nodes, see stored_state.h. What keeps it from that is thrown,
    // so that no scene is saved without it.
    std::intptr_t HandleExtension(int id, void* argument) override;
    std::vector<int> ListExtensions() override;

    // The scene goes away, or the Core does: the nodes end here, and what they stand for stays with
    // the host. With them goes what the take knew.
    void Drop();

  private:
    friend class Takes;

    void DeleteNodes();

    TVL::AdaptorInterface& adaptor_;
    const Takes& all_;
    TVL::PluginRecord record_;
    NodeBook book_;
    std::vector<Recording> recordings_;
    const Take* parent_ = nullptr;
    StoredRest rest_;
};

}  // namespace replay
