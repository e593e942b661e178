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

void OwnerProxy::ReadName() noexcept try {
    plugin = real_->plugin ? &record_ : nullptr;
    if (!plugin || record_.name == real_->plugin->name) return;
    {
        std::string name = real_->plugin->name;
        const std::lock_guard lock(mutex_);
        record_.name.swap(name);
    }
    scribe_.Know(id_, Facts());
} catch (...) {  // no memory: the adaptor reads the name as it was
}

OwnerProxy* Owners::Of(TVL::CoreElement* real) {
    if (!real) return nullptr;
    OwnerProxy* made = nullptr;
    try {
        const std::lock_guard lock(mutex_);
        std::unique_ptr<OwnerProxy>& owner = owners_[real];
        if (owner) return owner.get();
        made = (owner = std::make_unique<OwnerProxy>(scribe_, mutex_, real)).get();
    } catch (...) {
        return nullptr;
    }
    scribe_.Know(made->Id(), made->Facts());
    return made;
}

OwnerProxy* Owners::Named(TVL::CoreElement* real) {
    OwnerProxy* const owner = Of(real);
    if (owner) owner->ReadName();
    return owner;
}

ObjectId Owners::IdOf(const TVL::CoreElement* proxy) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [real, owner] : owners_)
        if (owner.get() == proxy) return owner->Id();
    return 0;
}

// Whoever gives it away has made it for the adaptor, which releases it once.
class Owners::ChunkProxy final : public TVL::CUndo {
  public:
    ChunkProxy(Owners& owners, TVL::CUndo* real)
        : owners_(owners), id_(owners.scribe_.NewId(ObjectKind::kChunk)), real_(real) {
        const std::lock_guard lock(owners_.mutex_);
        owners_.chunks_.insert(id_);
    }
    ~ChunkProxy() override {
        const std::lock_guard lock(owners_.mutex_);
        owners_.chunks_.erase(id_);
    }

    ObjectId Id() const { return id_; }

    void Undo(bool isUndo) override { Pass<Operation::CUndo_Undo, &CUndo::Undo>(isUndo); }
    void Redo() override { Pass<Operation::CUndo_Redo, &CUndo::Redo>(); }
    void Release() override {
        const std::unique_ptr<ChunkProxy> self(this);
        Pass<Operation::CUndo_Release, &CUndo::Release>();
    }

  private:
    template <Operation kOperation, auto kMethod, class... Values>
    void Pass(const Values&... values) {
        owners_.scribe_.Pass<kOperation, kMethod>(id_, real_, values...);
    }

    Owners& owners_;
    ObjectId id_;
    TVL::CUndo* real_;
};

// One for whose proxy there is no memory goes as it is, and what becomes of it is not told.
TVL::CUndo* Owners::WrapChunk(TVL::CUndo* real, ObjectId& id) try {
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
