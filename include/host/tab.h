#pragma once

#include <cstddef>
#include <vector>

#include "host/host_api.h"

// Whether a table of `count` entries has this one. The stand-in host takes note if it has not.
HOST_API bool TabHolds(int index, int count);

// The host's growing table.
template <class T>
class Tab {
  public:
    int Count() const { return static_cast<int>(items_.size()); }
    void SetCount(int count) { items_.resize(static_cast<std::size_t>(count)); }
    T& operator[](int index) { return TabHolds(index, Count()) ? items_[At(index)] : nothing_; }
    const T& operator[](int index) const {
        return TabHolds(index, Count()) ? items_[At(index)] : nothing_;
    }

    // Adds copies of `count` items at the end; the index of the first of them.
    int Append(int count, const T* items) {
        const int first = Count();
        for (int i = 0; i < count; ++i)
            items_.push_back(items[i]);
        return first;
    }
    void Delete(int start, int count) {
        const auto first = items_.begin() + start;
        items_.erase(first, first + count);
    }
    void ZeroCount() { items_.clear(); }

  private:
    static std::size_t At(int index) { return static_cast<std::size_t>(index); }

    std::vector<T> items_;
    T nothing_{};  // in the place of an entry that is not there
};
