#include "tvl/singleton.h"

#include <algorithm>
#include <cstddef>

#include "tvl/error_code.h"
#include "tvl/log.h"

namespace TVL::Util {

void SingletonCollector::Add(SingletonReference* reference) {
    entries.push_back(reference);
}

void SingletonCollector::Remove(const SingletonReference* reference) {
    std::erase(entries, reference);
}

void SingletonCollector::DestroyAll() {
    // Each call takes its own entry off the list, and the last one this object too, so that nothing
    // of it is read after the entry at index 0. What comes up meanwhile stands above the index.
    for (std::size_t index = entries.size(); index-- > 0;) {
        if (index < entries.size()) entries[index]->Destroy();
    }
}

namespace {

// An outside instance is not even asked: the library that it belongs to can be gone by now.
template <class T>
void DestroyOwnInstance() {
    if (!T::external && T::instance != nullptr) T::instance->Destroy();
}

// Frees what anybody can bring up at any moment. Nothing else is touched: an instance of a further
// class that nobody destroyed in time could reach into libraries that are gone by now.
struct ModuleEnd {
    ~ModuleEnd() {
        DestroyOwnInstance<ErrorCode>();
        DestroyOwnInstance<Log>();
        DestroyOwnInstance<SingletonCollector>();
    }
};

const ModuleEnd moduleEnd;

}  // namespace

}  // namespace TVL::Util
