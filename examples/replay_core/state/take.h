#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "replay_core/state/node_book.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// A capture in the scene: the owner of its nodes, under the capture's name, with the book of those
// that are there. Undo records name it, so it is kept until the Core is detached, also while none
// of its nodes is left.
class Take final : public TVL::CoreElement {
  public:
    Take(TVL::AdaptorInterface& adaptor, std::string name);
    Take(const Take&) = delete;
    Take& operator=(const Take&) = delete;

    const std::string& Name() const { return record_.name; }
    NodeBook& Book() { return book_; }

    // The user deletes some of the nodes (extension 43): the others go with them, in the same undo
    // step, because a take with missing joints is no take.
    std::intptr_t HandleExtension(int id, void* argument) override;
    std::vector<int> ListExtensions() override;

    // The scene goes away, or the Core does: the nodes end here, and what they stand for stays with
    // the host.
    void DropNodes();

  private:
    void DeleteNodes();

    TVL::AdaptorInterface& adaptor_;
    TVL::PluginRecord record_;
    NodeBook book_;
};

// All takes since the Core was attached, by name.
class Takes {
  public:
    explicit Takes(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {}

    // The take of that name, new if there was none.
    Take& Named(std::string_view name);

    void DropNodes();

  private:
    TVL::AdaptorInterface& adaptor_;
    std::vector<std::unique_ptr<Take>> takes_;
};

}  // namespace replay
