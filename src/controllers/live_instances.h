#pragma once

// The objects of one class that are alive, in the order in which they were made. Each object holds
// its own place (`liveLink`), so entering and leaving cost nothing whatever the number; the list
// itself is two pointers without a destructor, and outlives every object.
template <class C>
struct LiveLink {
    C* previous = nullptr;
    C* next = nullptr;
};

template <class C>
class LiveInstances {
  public:
    void Append(C& object) {
        object.liveLink.previous = last_;
        (last_ ? last_->liveLink.next : first_) = &object;
        last_ = &object;
    }

    void Remove(C& object) {
        const LiveLink<C> link = object.liveLink;
        (link.previous ? link.previous->liveLink.next : first_) = link.next;
        (link.next ? link.next->liveLink.previous : last_) = link.previous;
        for (Walk* walk = walks_; walk; walk = walk->outer) {
            if (walk->upcoming == &object) walk->upcoming = link.previous;
        }
    }

    // Visits from the newest to the oldest. Objects may be made and destroyed meanwhile: what is
    // made is not visited, what is gone is left out.
    template <class Visit>
    void ForEachFromLast(Visit visit) {
        Walk walk{last_, walks_};
        walks_ = &walk;
        while (C* object = walk.upcoming) {
            walk.upcoming = object->liveLink.previous;
            visit(*object);
        }
        walks_ = walk.outer;
    }

  private:
    struct Walk {
        C* upcoming;
        Walk* outer;
    };

    C* first_ = nullptr;
    C* last_ = nullptr;
    Walk* walks_ = nullptr;
};
