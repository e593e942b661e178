#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/animatable.h"
#include "host/storage.h"

class ReferenceTarget;
using RefTargetHandle = ReferenceTarget*;
using PartID = std::uint32_t;
using RefMessage = std::uint32_t;

namespace headless {
class DependentsWalk;
class Graveyard;
class ObjectWatch;
class ReferenceBook;
}  // namespace headless

enum RefResult { REF_SUCCEED = 1, REF_DONTCARE = 2, REF_STOP = 3 };

// Masks and messages of NotifyDependents.
inline constexpr PartID PART_ALL = 0x800037FF;
inline constexpr RefMessage REFMSG_CHANGE = 0x50;
inline constexpr SClass_ID NOTIFY_ALL = 0xFFFFFFF0;

// Holds references to targets by index. A reference keeps its target alive; what nothing refers to
// any more is deleted, though never while a record of the undo stream can still meet it.
class HOST_API ReferenceMaker : public Animatable {
  public:
    virtual IOResult Save(ISave* save);
    virtual IOResult Load(ILoad* load);
    virtual RefResult NotifyRefChanged(Interval changed, RefTargetHandle target, PartID& part,
                                       RefMessage message);

    virtual int NumRefs();
    virtual RefTargetHandle GetReference(int index);
    virtual void SetReference(int index, RefTargetHandle target);  // stores, nothing else

    // Points reference `index` at `target` (or at nothing), undoably. A target that refers to this
    // object itself, be it by way of others, is refused: the reference stays as it is.
    void ReplaceReference(int index, RefTargetHandle target);

    // Lets go of all references, then deletes the object. What refers to it lets go of it first.
    void DeleteMe();

    ~ReferenceMaker() override;

  private:
    friend class ReferenceTarget;
    friend class headless::ReferenceBook;
    friend class headless::ObjectWatch;
    ReferenceTarget* asTarget_ = nullptr;                       // this object, while it is one
    std::vector<std::pair<int, ReferenceTarget*>> references_;  // by index, those that point
    headless::ObjectWatch* watches_ = nullptr;  // who wants to know when this object is destroyed
};

// What a copy has made of what.
class HOST_API RemapDir {
  public:
    virtual ~RemapDir();
    virtual RefTargetHandle FindMapping(RefTargetHandle from) = 0;  // null: not copied
    virtual void AddEntry(RefTargetHandle from, RefTargetHandle to) = 0;
    virtual RefTargetHandle CloneRef(RefTargetHandle from) = 0;  // copies it at most once
};

// What references point to.
class HOST_API ReferenceTarget : public ReferenceMaker {
  public:
    ReferenceTarget() { asTarget_ = this; }

    virtual RefTargetHandle Clone(RemapDir& remap);

    // Notes in `remap` that `to` is the copy of `from`.
    void BaseClone(ReferenceTarget* from, ReferenceTarget* to, RemapDir& remap);

    // Tells whoever refers to this object, newest first, and by them those that refer to them.
    RefResult NotifyDependents(Interval changed, PartID part, RefMessage message,
                               SClass_ID classFilter = NOTIFY_ALL, bool propagate = true,
                               RefTargetHandle target = nullptr);

    // Everything that referred to `from` refers to this object, undoably. With `deleteFrom`, `from`
    // is then deleted if nothing refers to it.
    void TransferReferences(ReferenceTarget* from, bool deleteFrom);

    // Whether anything refers to this object; what only the undo stream keeps has nobody.
    bool HasDependents() const;

    ~ReferenceTarget() override;

  private:
    friend class ReferenceMaker;
    friend class headless::ReferenceBook;
    friend class headless::DependentsWalk;
    friend class headless::Graveyard;
    void LoseDependents();

    std::vector<std::pair<ReferenceMaker*, int>> dependents_;  // who refers to this, by which index
    headless::DependentsWalk* walk_ = nullptr;  // the innermost walk over them that is going on
    std::uint32_t seenBySearch_ = 0;
    bool parked_ = false;  // referred to by nobody, kept for the undo stream
    ReferenceTarget* olderParked_ = nullptr;
    ReferenceTarget* newerParked_ = nullptr;
};
