#pragma once

#include <cstdint>
#include <vector>

#include "controllers/parted_array.h"

// By what an undo record knows its key again, wherever that lies by then: a number that no other
// key of the table bears.
using KeyName = std::uint32_t;
inline constexpr KeyName kNoName = 0;

// The names of a table's keys, at the same positions. Only keys that a record names have one: a key
// that comes or is overwritten inside a hold gets a new name, one that is about to be changed there
// keeps the name it has or gets its first. A key that comes or is overwritten past the hold has
// none, so that no record takes it for its own; a key that a record brings back has its old one.
class KeyNames {
  public:
    // For a key that is about to come.
    KeyName New();

    KeyName At(std::int32_t index) const {
        const auto at = static_cast<std::size_t>(index);
        return at < Size() ? names_[at] : kNoName;
    }

    // The key's name, a new one if it has none.
    KeyName Give(std::int32_t index);

    // Of all keys, up to the last that has one.
    const std::vector<KeyName>& All() const { return names_.Whole(); }

    // Of all keys of a table that holds `count`, each with one.
    const std::vector<KeyName>& GiveAll(std::int32_t count);

    // As the keys come, are overwritten and go. If one fails nothing has changed.
    void Insert(std::int32_t index, KeyName name);
    bool CanAppend(std::int32_t index, KeyName name) const {
        return name != kNoName && names_.CanAppend(static_cast<std::size_t>(index));
    }
    void Append(KeyName name) { names_.Append() = name; }  // where it can be done
    void Set(std::int32_t index, KeyName name);
    void Remove(std::int32_t index);
    void Assign(const std::vector<KeyName>& names) { names_.EditWhole() = names; }

    // The keys are not those any more that records name.
    void Clear() { names_.clear(); }

    // The same, and all values that records hold have lost their meaning: names that were given
    // until now are void.
    void VoidAll();
    bool IsValid(KeyName name) const;
    KeyName Newest() const { return newest_; }

  private:
    std::size_t Size() const { return names_.size(); }

    // None are kept for the keys behind the last one that has a name.
    PartedArray<std::vector<KeyName>> names_;
    KeyName newest_ = 1;
    KeyName void_ = 0;  // this one and all older ones
};
