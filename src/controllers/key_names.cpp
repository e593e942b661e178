#include "controllers/key_names.h"

KeyName KeyNames::New() {
    if (++newest_ == kNoName) ++newest_;
    return newest_;
}

KeyName KeyNames::Give(std::int32_t index) {
    if (At(index) == kNoName) Set(index, New());
    return At(index);
}

const std::vector<KeyName>& KeyNames::GiveAll(std::int32_t count) {
    for (std::int32_t index = 0; index < count; ++index)
        Give(index);
    return All();
}

void KeyNames::Insert(std::int32_t index, KeyName name) {
    const auto at = static_cast<std::size_t>(index);
    if (at >= Size() && name == kNoName) return;
    while (Size() < at)
        names_.push_back(kNoName);
    names_.insert(at, name);
}

void KeyNames::Set(std::int32_t index, KeyName name) {
    const auto at = static_cast<std::size_t>(index);
    if (at < Size())
        names_.Edit(at) = name;
    else
        Insert(index, name);
}

void KeyNames::Remove(std::int32_t index) {
    const auto at = static_cast<std::size_t>(index);
    if (at < Size()) names_.erase(at);
}

void KeyNames::VoidAll() {
    Clear();
    void_ = newest_;
    New();
}

// Numbers come round after four thousand million; the newer half of them is told from the older.
bool KeyNames::IsValid(KeyName name) const {
    return static_cast<std::int32_t>(name - void_) > 0;
}
