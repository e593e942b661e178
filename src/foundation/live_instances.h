#pragma once

#include <unordered_set>
#include <utility>

// The objects of one class that are alive, in the order in which they were made. Each object holds
// its own place (`liveLink`), and is found by its address without being touched, so that entering,
// leaving and finding cost the same whatever the number. The list has no destructor and outlives
// every object; what it keeps on the heap goes with the last of them.
template <class C>
struct LiveLink {
    C* previous = nullptr;
    C* next = nullptr;
};

template <class C>
class LiveInstances {
  public:
    void Append(C& object) {
        if (!places_) places_ = new Places;
        places_->insert(&object);
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
        places_->erase(&object);
        if (places_->empty()) delete std::exchange(places_, nullptr);
    }

    // Null if there is none.
    C* Newest() const { return last_; }

    // The object as what it is, if it is one of these; null otherwise. What it says of itself does
    // not count, since what stands in for one that could not be read says the same, and neither
    // does the language's type information, which objects of the host's need not have.
    template <class Base>
    C* Find(Base* object) const {
        const bool isOne = places_ && places_->contains(object);
        return isOne ? static_cast<C*>(object) : nullptr;
    }

    // Visits from the newest to the oldest. Objects may be made and destroyed meanwhile: what is
    // made is not visited, what is gone is left out.
    template <class Visit>
    void ForEachFromLast(Visit visit) {
        Walk walk(*this);
        while (C* object = walk.upcoming) {
            walk.upcoming = object->liveLink.previous;
            visit(*object);
        }
    }

  private:
    // Ends with its visit, also when that throws.
    struct Walk {
        explicit Walk(LiveInstances& all)
            : upcoming(all.last_), outer(std::exchange(all.walks_, this)), walked(all) {}
        ~Walk() { walked.walks_ = outer; }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

        C* upcoming;
        Walk* outer;
        LiveInstances& walked;
    };

    using Places = std::unordered_set<const void*>;  // bases lie where their object does

    C* first_ = nullptr;
    C* last_ = nullptr;
    Walk* walks_ = nullptr;
    Places* places_ = nullptr;
};
