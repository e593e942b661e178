#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

// Elements in their order, in one plain array, a vector, that grows at its end. From the first time
// that an element comes or goes farther inside, until somebody wants the plain array again, they
// stand in short parts instead: a change then moves the elements of one part alone, and many
// changes cost time in proportion to their number, in whatever order they come. Reading by position
// works in both forms and changes neither.
//
// What is worked out from the elements and kept, where they are included, is good as long as
// Edition() is the same: everything that changes or moves one makes it another, and so does Edit,
// which hands out what can be changed. It is changed at once, before anybody looks at the array
// again.
template <class Vector>
class PartedArray {
    using E = typename Vector::value_type;
    static_assert(std::is_trivially_copyable_v<E>);

  public:
    PartedArray() = default;
    PartedArray(const PartedArray&) = delete;  // an edition is of one array
    PartedArray& operator=(const PartedArray&) = delete;

    std::uint64_t Edition() const { return edition_; }

    std::size_t size() const {
        if (parts_.empty()) return whole_.size();
        return StartOf(parts_.size() - 1) + parts_.back().elements.size();
    }
    bool empty() const { return whole_.empty() && parts_.empty(); }
    std::size_t Room() const { return whole_.capacity(); }  // of the plain array

    const E& operator[](std::size_t index) const {
        if (parts_.empty()) return whole_[index];
        const Part& part = parts_[PartOf(index)];
        return part.elements[index - StartOf(recent_)];
    }

    // The elements if they are one plain array at the moment, else null.
    const E* Plain() const { return parts_.empty() ? whole_.data() : nullptr; }

    const E& front() const { return (*this)[0]; }
    const E& back() const { return (*this)[size() - 1]; }

    E& Edit(std::size_t index) {
        ++edition_;
        return const_cast<E&>(std::as_const(*this)[index]);
    }

    // The first position whose element is not as asked, of elements that are so up to some
    // position.
    template <class Condition>
    std::size_t FirstNot(Condition isSo) const {
        if (parts_.empty()) return FirstNotOf(whole_.begin(), whole_.end(), isSo);
        const auto found =
            std::partition_point(parts_.begin(), parts_.end(),
                                 [&](const Part& part) { return isSo(part.elements.front()); });
        if (found == parts_.begin()) return 0;
        const auto part = static_cast<std::size_t>(found - parts_.begin()) - 1;
        const std::vector<E>& elements = parts_[part].elements;
        return StartOf(part) + FirstNotOf(elements.begin(), elements.end(), isSo);
    }

    // Afterwards the element at `index` can go, or one can come there, without a failure. If these
    // fail nothing has changed.
    void PrepareErase(std::size_t index) {
        ++edition_;
        if (parts_.empty() && whole_.size() - index > kPart) CutUp();
    }
    void PrepareInsert(std::size_t index) {
        PrepareErase(index);
        if (parts_.empty()) {
            if (whole_.size() == whole_.capacity()) whole_.reserve(2 * whole_.size() + kLeast);
            return;
        }
        if (parts_[PartOf(index)].elements.size() >= 2 * kPart) Split(PartOf(index));
        parts_[PartOf(index)].elements.reserve(2 * kPart);
    }

    void insert(std::size_t index, const E& element) {
        PrepareInsert(index);
        InsertPrepared(index, element);
    }
    // Behind PrepareInsert(index), which made the new edition, with no look at the array between.
    void InsertPrepared(std::size_t index, const E& element) {
        if (parts_.empty()) {
            if (index == whole_.size())
                whole_.push_back(element);
            else
                whole_.insert(Place(whole_, index), element);
            return;
        }
        std::vector<E>& elements = parts_[PartOf(index)].elements;
        elements.insert(Place(elements, index - StartOf(recent_)), element);
        MoveBehind(recent_, 1);
    }
    void push_back(const E& element) { insert(size(), element); }

    // The short way of an element that comes at `index`: whether that is the end of the plain array
    // and there is room for it, and then its place, to be filled at once.
    bool CanAppend(std::size_t index) const {
        return parts_.empty() && whole_.size() == index && whole_.size() != whole_.capacity();
    }
    E& Append() {
        ++edition_;
        E& place = whole_.emplace_back();
        // By its number: the room may end ahead of it.
        const auto address = reinterpret_cast<std::uintptr_t>(&place);
        __builtin_prefetch(reinterpret_cast<const void*>(address + kNear * sizeof(E)));
        return place;
    }
    void erase(std::size_t index) {
        PrepareErase(index);
        if (parts_.empty()) {
            whole_.erase(Place(whole_, index));
            if (index > kNear) __builtin_prefetch(whole_.data() + index - kNear);
            return;
        }
        std::vector<E>& elements = parts_[PartOf(index)].elements;
        elements.erase(Place(elements, index - StartOf(recent_)));
        MoveBehind(recent_, -1);
        if (!elements.empty()) return;
        Settle();
        parts_.erase(Place(parts_, recent_));
    }
    void clear() {
        ++edition_;
        whole_.clear();
        parts_.clear();
    }

    // The elements as one array, which they are from here on until the next change inside.
    Vector& EditWhole() {
        ++edition_;
        Join();
        return whole_;
    }
    const Vector& Whole() const {
        Join();
        return whole_;
    }
    auto begin() const { return Whole().begin(); }
    auto end() const { return Whole().end(); }

  private:
    // Elements of a new part, which is split at twice as many: few enough to be moved in about the
    // time that it takes to find the part.
    static constexpr std::size_t kPart = std::max<std::size_t>(64, 8192 / sizeof(E));
    static constexpr std::size_t kLeast = 16;

    // In takes of many nodes elements come and go at the ends of many arrays by turns: the next but
    // one is on its way from memory until it is this array's turn again.
    static constexpr std::size_t kNear = 2;

    struct Part {
        std::size_t start;  // the position of its first element; see below
        std::vector<E> elements;
    };

    template <class Elements>
    static auto Place(Elements& elements, std::size_t index) {
        return elements.begin() + static_cast<std::ptrdiff_t>(index);
    }

    template <class Place, class Condition>
    static std::size_t FirstNotOf(Place first, Place last, Condition isSo) {
        return static_cast<std::size_t>(std::partition_point(first, last, isSo) - first);
    }

    std::size_t StartOf(std::size_t part) const {
        return parts_[part].start + (part > settled_ ? behind_ : 0);
    }

    // The part of the element at `index`, or the last one. It is left in recent_.
    std::size_t PartOf(std::size_t index) const {
        const auto isBehind = [&](std::size_t part) {
            return part >= parts_.size() || index < StartOf(part);
        };
        if (isBehind(recent_) || !isBehind(recent_ + 1)) {
            const auto found =
                std::partition_point(parts_.begin(), parts_.end(), [&](const Part& part) {
                    return !isBehind(static_cast<std::size_t>(&part - parts_.data()));
                });
            recent_ = static_cast<std::size_t>(found - parts_.begin()) - 1;
        }
        return recent_;
    }

    // The parts behind this one start so much later, or earlier.
    void MoveBehind(std::size_t part, std::ptrdiff_t by) {
        while (settled_ < part)
            parts_[++settled_].start += behind_;
        while (settled_ > part)
            parts_[settled_--].start -= behind_;
        behind_ += static_cast<std::size_t>(by);
    }

    void Settle() {
        MoveBehind(parts_.size() - 1, 0);
        settled_ = 0;
        behind_ = 0;
    }

    void CutUp() {
        std::vector<Part> parts;
        parts.reserve(whole_.size() / kPart + 1);
        for (std::size_t start = 0; start < whole_.size(); start += kPart) {
            const std::size_t end = std::min(start + kPart, whole_.size());
            parts.push_back({start, {Place(whole_, start), Place(whole_, end)}});
        }
        parts_ = std::move(parts);
        whole_.clear();  // its room stays, so that joining asks for none
        settled_ = 0;
        behind_ = 0;
    }

    void Split(std::size_t part) {
        Settle();
        const std::vector<E>& both = parts_[part].elements;
        Part upper{parts_[part].start + kPart, {Place(both, kPart), both.end()}};
        parts_.insert(Place(parts_, part + 1), std::move(upper));
        parts_[part].elements.resize(kPart);
    }

    void Join() const {
        if (parts_.empty()) return;
        ++edition_;
        whole_.reserve(size());
        for (const Part& part : parts_)
            whole_.insert(whole_.end(), part.elements.begin(), part.elements.end());
        parts_ = {};
    }

    // All elements are in one of these. Which one, is no part of the value.
    mutable Vector whole_;
    mutable std::vector<Part> parts_;  // none is empty

    mutable std::uint64_t edition_ = 1;
    mutable std::size_t recent_ = 0;  // the part that was found last
    std::size_t settled_ = 0;         // parts behind this one start at `start` plus `behind_`
    std::size_t behind_ = 0;          // modulo the range of the type, so that it can be below zero
};
