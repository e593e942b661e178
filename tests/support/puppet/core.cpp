// The puppet's library. PUPPET_HAS_* say which routines it exports.

#include "platform/modules.h"
#include "tests/support/puppet/stage.h"

namespace {

puppet::Stage& stage = puppet::TheStage();

// Shows whether the library is in memory.
const struct Presence {
    Presence() { stage.isLoaded = true; }
    ~Presence() { stage.isLoaded = false; }
} presence;

class Chunk final : public TVL::CUndo {
    void Undo(bool) override {}
    void Redo() override {}
};

class Owner final : public TVL::CoreElement, public TVL::NodeListener {
  public:
    Owner() { plugin = &record_; }
    std::vector<int> ListExtensions() override {
        return {TVL::kNodesBeingDeleted, TVL::kSceneBeingSaved};
    }
    void OnNodeRemoved(TVL::CNode*) override {}
    void OnNodeRestored(TVL::CNode*) override {}

  private:
    TVL::PluginRecord record_{"Litter"};
};

// Has its hearer listen to whoever listens to it.
class Button final : public TVL::Util::MessageNode {
  public:
    Button() : MessageNode("button") {}
    void Receive(TVL::Util::Message* message, bool) override {
        if (message->id == TVL::Util::Message::kListening) hearer_.Listen(message->sender);
    }

  private:
    MessageNode hearer_{"hearer"};
};

[[maybe_unused]] TVL::Util::MessageNode* Litter(TVL::AdaptorInterface& adaptor) {
    // They live as long as the library, like the statics of many a Core.
    static TVL::Log log;
    static TVL::ErrorCode codes;
    static Owner owner;
    static Button button;
    adaptor.SetLog(&log);
    adaptor.SetErrorCode(&codes);
    adaptor.BeginUndoGroup("outer");
    adaptor.BeginUndoGroup("inner");
    auto* const node =
        static_cast<TVL::CoreNode*>(adaptor.CreateLensNode(&owner, "left", nullptr, &owner));
    adaptor.AddUndoChunk(new Chunk);
    adaptor.BeginRecording({&owner});
    adaptor.RequestFocus();
    node->AcquireSnapshot(0.5);
    auto* const copy = node->Clone(false);
    if (copy) copy->AcquireSnapshot(0.5);
    return &button;
}

[[maybe_unused]] CoreInterface* Attach(TVL::AdaptorInterface* adaptor) {
    ++stage.attachCount;
    stage.adaptor = adaptor;
    stage.log = &TVL::Log::GetInstance;
    stage.errorCode = &TVL::ErrorCode::GetInstance;
    stage.litter = &Litter;
    if (stage.onAttach) stage.onAttach();
    return stage.core;
}

[[maybe_unused]] void Detach(CoreInterface* core) {
    ++stage.detachCount;
    stage.detached = core;
    if (stage.onDetach) stage.onDetach();
    stage.adaptor = nullptr;
}

}  // namespace

MODULE_ROUTINE std::uint32_t getVersion();
MODULE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor);
MODULE_ROUTINE void detach(CoreInterface* core);

#ifdef PUPPET_HAS_VERSION
std::uint32_t getVersion() {
    if (stage.onVersion) stage.onVersion();
    return stage.version + PUPPET_HAS_VERSION;
}
#endif

#ifdef PUPPET_HAS_ATTACH
CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return stage.between ? stage.between(adaptor, &Attach) : Attach(adaptor);
}
#endif

#ifdef PUPPET_HAS_DETACH
void detach(CoreInterface* core) {
    stage.betweenAtEnd ? stage.betweenAtEnd(core, &Detach) : Detach(core);
}
#endif
