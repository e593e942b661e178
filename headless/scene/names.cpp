#include "headless/scene/names.h"

namespace headless {

void NameBook::Add(const std::string& name) {
    ++uses_[name];
}

void NameBook::Remove(const std::string& name) {
    const auto found = uses_.find(name);
    if (found != uses_.end() && --found->second == 0) uses_.erase(found);
}

void NameBook::Replace(const std::string& before, const std::string& after) {
    Remove(before);
    Add(after);
}

std::string NameBook::MakeUnique(const std::string& stem) {
    unsigned& last = lastNumber_[stem];
    for (;;) {
        ++last;
        std::string name = stem + (last < 10 ? "0" : "") + std::to_string(last);
        if (!uses_.contains(name)) return name;
    }
}

}  // namespace headless
