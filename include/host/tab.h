#pragma once

#include <vector>

// The host's growing table.
template <class T>
class Tab {
  public:
    int Count() const { return static_cast<int>(items_.size()); }
    void SetCount(int count) { items_.resize(static_cast<std::size_t>(count)); }
    T& operator[](int index) { return items_[static_cast<std::size_t>(index)]; }
    const T& operator[](int index) const { return items_[static_cast<std::size_t>(index)]; }

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
    std::vector<T> items_;
};
