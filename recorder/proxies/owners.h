#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

#include "recorder/proxies/scribe.h"
#include "tvl/core_element.h"
#include "tvl/undo.h"

namespace recorder {

class Owners;

// Stands for an element of the Core that owns nodes. The adaptor reads the name in the Core's own
// record, which can change it at any time; which record that is, is looked up anew with each call
// that the adaptor may read a name behind.
class OwnerProxy final : public ExtendableProxy<CoreElement> {
  public:
    OwnerProxy(Scribe& scribe, Owners& owners, CoreElement* real)
        : ExtendableProxy(scribe, scribe.NewId(ObjectKind::kOwner), real), owners_(owners) {}

    std::intptr_t HandleExtension(int id, void* argument) override;
    bool HasExtension(int id) override;

    // Tells the name, if it is another one than before.
    void ReadName() noexcept;

    ObjectFacts Facts() const { return {.name = name_}; }

  private:
    Owners& owners_;
    std::string name_;  // as it was told last
};

// What the Core gives the adaptor to call: owners, and undo chunks.
class Owners {
  public:
    explicit Owners(Scribe& scribe) : scribe_(scribe) {}

    // Of an element that the adaptor only compares, so that it need not be there any more. Null for
    // null.
    OwnerProxy* Of(CoreElement* real);

    // Of one that it reads the name of.
    OwnerProxy* Named(CoreElement* real);

    // Of a proxy as the adaptor gives it back; 0 for what is none.
    ObjectId IdOf(const CoreElement* proxy) const;

    // What the adaptor gets for the Core's chunk, to be released by it.
    CUndo* WrapChunk(CUndo* real, ObjectId& id);

    void TellObjects(const TapeWriter::TellObject& tell) const;

    // A person deletes nodes, which an owner is just to be asked about.
    std::function<void()> onUserDeletion;

  private:
    friend class OwnerProxy;
    class ChunkProxy;

    Scribe& scribe_;
    mutable std::mutex mutex_;  // for the names, too
    std::unordered_map<const CoreElement*, std::unique_ptr<OwnerProxy>> owners_;
    std::unordered_set<ObjectId> chunks_;  // that are not released yet
};

}  // namespace recorder
