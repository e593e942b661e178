#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

namespace TVL::Util {

// A tree of objects that come and go one by one. Nobody owns anybody: who is destroyed leaves its
// parent, and its children stay behind at the top. T derives from Composite_Dynamic<T>.
// The order of the virtual operations is part of the contract.
template <class T>
class Composite_Dynamic {
  public:
    // The parent is going; the child is still below it, and may leave or end itself.
    virtual void OnParentDestroyed() = 0;

    virtual void OnAttached() {}
    virtual void OnDetached() {}

    virtual ~Composite_Dynamic() {
        Leave();
        while (!children.empty()) {
            T* const child = children.back();
            child->OnParentDestroyed();
            Drop(child);
        }
    }

    Composite_Dynamic() = default;
    Composite_Dynamic(const Composite_Dynamic&) = delete;
    Composite_Dynamic& operator=(const Composite_Dynamic&) = delete;

    // Puts the child behind the other children, away from the parent that it had. It is neither
    // this object nor one above it.
    void Attach(T& child) {
        child.Leave();
        children.push_back(&child);
        child.parent = static_cast<T*>(this);
        child.OnAttached();
    }

    std::vector<T*> children;  // in the order of attachment
    T* parent = nullptr;       // null at the top

  private:
    // From the end, where who came last is.
    auto Find(const Composite_Dynamic* child) {
        return std::find_if(children.rbegin(), children.rend(),
                            [child](const Composite_Dynamic* each) { return each == child; });
    }

    // Whoever is no child of this object, or is none any more, stays as it is.
    void Drop(Composite_Dynamic* child) {
        if (Find(child) == children.rend()) return;
        child->OnDetached();
        const auto place = Find(child);
        if (place == children.rend()) return;
        children.erase(std::prev(place.base()));
        child->parent = nullptr;
    }

    void Leave() {
        if (parent) parent->Drop(this);
        parent = nullptr;
    }
};

}  // namespace TVL::Util
