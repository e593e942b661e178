#pragma once

#include "host/reference.h"

// Held by a function that walks over the dependents of a target while these do what they like: the
// places in the list stay (who leaves becomes null, who comes is appended), and the walk knows when
// the target itself has gone. Walks over one target nest.
class DependentsWalk {
  public:
    explicit DependentsWalk(ReferenceTarget& target) : target_(&target), outer_(target.walk_) {
        target.walk_ = this;
    }
    ~DependentsWalk() {
        if (target_ == nullptr) return;
        target_->walk_ = outer_;
        if (outer_ == nullptr)
            std::erase_if(target_->dependents_, [](const auto& d) { return d.first == nullptr; });
    }
    DependentsWalk(const DependentsWalk&) = delete;
    DependentsWalk& operator=(const DependentsWalk&) = delete;

    bool TargetIsGone() const { return target_ == nullptr; }

    static void TellGone(ReferenceTarget& target) {
        for (DependentsWalk* walk = target.walk_; walk != nullptr; walk = walk->outer_)
            walk->target_ = nullptr;
    }

  private:
    ReferenceTarget* target_;
    DependentsWalk* outer_;
};
