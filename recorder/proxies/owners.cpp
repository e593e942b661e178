#include "recorder/proxies/owners.h"

#include "tvl/ids.h"
#include "tvl/xml_node.h"

namespace recorder {

std::intptr_t OwnerProxy::HandleExtension(int id, void* argument) {
    const auto* const tree =
        id == TVL::kSceneBeingSaved ? static_cast<const XMLNode*>(argument) : nullptr;
    const ExtensionValue said{tree ? 't' : '\0', 0, tree};
    return Extend(id, argument, said, [this](std::intptr_t result) {
        ReadName();
        return result;
    });
}

// That is asked for 43 alone when a person deletes.
bool OwnerProxy::HasExtension(int id) {
    if (id == TVL::kNodesBeingDeleted) owners_.onUserDeletion();
    return ExtendableProxy::HasExtension(id);
}

void OwnerProxy::ReadName() noexcept try {
    {
        const std::lock_guard lock(owners_.mutex_);
        plugin = real_->plugin;
        if (!plugin || name_ == plugin->name) return;
        name_ = plugin->name;
    }
    scribe_.Know(id_, Facts());
} catch (...) {  // no memory: it stays untold
}

OwnerProxy* Owners::Of(CoreElement* real) {
    if (!real) return nullptr;
    OwnerProxy* made = nullptr;
    try {
        const std::lock_guard lock(mutex_);
        std::unique_ptr<OwnerProxy>& owner = owners_[real];
        if (owner) return owner.get();
        made = (owner = std::make_unique<OwnerProxy>(scribe_, *this, real)).get();
    } catch (...) {
        return nullptr;
    }
    scribe_.Know(made->Id(), made->Facts());
    return made;
}

OwnerProxy* Owners::Named(CoreElement* real) {
    OwnerProxy* const owner = Of(real);
    if (owner) owner->ReadName();
    return owner;
}

ObjectId Owners::IdOf(const CoreElement* proxy) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [real, owner] : owners_)
        if (owner.get() == proxy) return owner->Id();
    return 0;
}

// Whoever gives it away has made it for the adaptor, which releases it once.
class Owners::ChunkProxy final : public Proxy<CUndo> {
  public:
    using enum Operation;

    ChunkProxy(Owners& owners, CUndo* real)
        : Proxy(owners.scribe_, owners.scribe_.NewId(ObjectKind::kChunk), real), owners_(owners) {
        const std::lock_guard lock(owners_.mutex_);
        owners_.chunks_.insert(id_);
    }
    ~ChunkProxy() override {
        const std::lock_guard lock(owners_.mutex_);
        owners_.chunks_.erase(id_);
    }

    void Undo(bool isUndo) override { Pass<CUndo_Undo>(isUndo); }
    void Redo() override { Pass<CUndo_Redo>(); }
    void Release() override {
        const std::unique_ptr<ChunkProxy> self(this);
        Pass<CUndo_Release>();
    }

  private:
    Owners& owners_;
};

// One for whose proxy there is no memory goes as it is, and what becomes of it is not told.
CUndo* Owners::WrapChunk(CUndo* real, ObjectId& id) try {
    if (!real) return nullptr;
    auto* const chunk = new ChunkProxy(*this, real);
    id = chunk->Id();
    return chunk;
} catch (...) {
    return real;
}

void Owners::TellObjects(const TapeWriter::TellObject& tell) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [real, owner] : owners_)
        tell(owner->Id(), owner->Facts());
    for (const ObjectId chunk : chunks_)
        tell(chunk, {});
}

}  // namespace recorder
