#include "tests/support/puppet/module/litter.h"

#include "tvl/message.h"

namespace puppet {
namespace {

class Chunk final : public TVL::CUndo {
  public:
    void Undo(bool) override { ++runs; }
    void Redo() override { ++runs; }

  private:
    int runs = 0;
};

class Owner final : public TVL::CoreElement {
  public:
    Owner() { plugin = &record; }
    std::vector<int> ListExtensions() override { return {43, 56}; }

  private:
    TVL::PluginRecord record{"Litter"};
};

class Listener final : public TVL::NodeListener {
  public:
    void OnNodeRemoved(TVL::CNode*) override { ++heard; }
    void OnNodeRestored(TVL::CNode*) override { ++heard; }

  private:
    int heard = 0;
};

class Button final : public TVL::Util::MessageNode {
  public:
    explicit Button(TVL::Util::MessageNode& hearer) : MessageNode("button"), hearer_(hearer) {}

    void Receive(TVL::Util::Message* message, bool) override {
        if (message->id == TVL::Util::Message::kListening) hearer_.Listen(message->sender);
    }

  private:
    TVL::Util::MessageNode& hearer_;
};

// Lives as long as the library, like the statics of many a Core.
struct Things {
    TVL::Log log;
    TVL::ErrorCode codes;
    TVL::Util::MessageNode hearer{"hearer"};
    Button button{hearer};
    Owner owner;
    Listener listener;
};

Things& TheThings() {
    static Things things;
    return things;
}

}  // namespace

TVL::Util::MessageNode* Litter(TVL::AdaptorInterface& adaptor) {
    Things& things = TheThings();
    adaptor.SetLog(&things.log);
    adaptor.SetErrorCode(&things.codes);

    adaptor.BeginUndoGroup("outer");
    adaptor.BeginUndoGroup("inner");
    TVL::CNode* const node =
        adaptor.CreateLensNode(&things.owner, "left", nullptr, &things.listener);
    adaptor.AddUndoChunk(new Chunk);
    adaptor.BeginRecording({&things.owner});
    adaptor.RequestFocus();

    auto* const real = static_cast<TVL::CoreNode*>(node);
    real->AcquireSnapshot(0.5);
    auto* const copy = real->Clone(false);
    if (copy) copy->AcquireSnapshot(0.5);
    return &things.button;
}

}  // namespace puppet
