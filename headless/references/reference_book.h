#pragma once

#include <utility>
#include <vector>

#include "host/reference.h"

namespace headless {

// Keeps both ends of every reference in step: the maker's index and the target's list of
// dependents. Nothing here is undoable; ReferenceMaker's operations add the records.
class ReferenceBook {
  public:
    // Points a reference elsewhere. The old target is released, unless it got into the maker
    // without the book.
    static void Point(ReferenceMaker& maker, int index, ReferenceTarget* target);

    // The same, but the old target stays with the caller; null if there was none.
    static ReferenceTarget* Move(ReferenceMaker& maker, int index, ReferenceTarget* target);

    // The maker as what others refer to; null if it is no target.
    static ReferenceTarget* AsTarget(const ReferenceMaker& maker) { return maker.asTarget_; }

    // Whether the book knows that the reference points at `target`.
    static bool Knows(const ReferenceMaker& maker, int index, const ReferenceTarget* target);

    // Whether `target` refers to `maker`, directly or by way of others, or is `maker`.
    static bool RefersTo(ReferenceTarget& target, ReferenceMaker& maker);

    // For the destructors: the other ends forget the object.
    static void Forget(ReferenceMaker& maker);
    static void Forget(ReferenceTarget& target);

    // Who refers to `target`, by which index. A place of one who left during a walk is null.
    using Dependents = std::vector<std::pair<ReferenceMaker*, int>>;
    static const Dependents& DependentsOf(const ReferenceTarget& target) {
        return target.dependents_;
    }

  private:
    static ReferenceTarget* Unlink(ReferenceMaker& maker, int index);
    static void RemoveDependent(ReferenceTarget& target, const ReferenceMaker& maker, int index);
};

// Held by a function that walks over the dependents of a target while these do what they like: the
// places in the list stay (who leaves becomes null, who comes is appended), and the walk knows when
// the target itself has gone. Walks over one target nest.
class DependentsWalk {
  public:
    struct Message {
        Interval changed;
        RefTargetHandle sender;
        PartID part;
        RefMessage message;
        SClass_ID classFilter;
        bool propagate;
    };

    // Tells the dependents of `target` as NotifyDependents does.
    static RefResult Tell(ReferenceTarget& target, const Message& message);

    explicit DependentsWalk(ReferenceTarget& target) : target_(&target), outer_(target.walk_) {
        target.walk_ = this;
    }
    ~DependentsWalk() {
        if (target_ == nullptr) return;
        target_->walk_ = outer_;
        if (!someLeft_) return;
        if (outer_ == nullptr)
            std::erase_if(target_->dependents_, [](const auto& d) { return d.first == nullptr; });
        else
            outer_->someLeft_ = true;
    }
    DependentsWalk(const DependentsWalk&) = delete;
    DependentsWalk& operator=(const DependentsWalk&) = delete;

    bool TargetIsGone() const { return target_ == nullptr; }

    void TellSomeoneLeft() { someLeft_ = true; }

    static void TellGone(ReferenceTarget& target) {
        for (DependentsWalk* walk = target.walk_; walk != nullptr; walk = walk->outer_)
            walk->target_ = nullptr;
    }

  private:
    ReferenceTarget* target_;
    DependentsWalk* outer_;
    bool someLeft_ = false;  // and has a place that is to go
};

}  // namespace headless
