#pragma once

#include <new>

namespace replay {

// Runs work whose failure is somebody's to tell. The result is null, or says in a few words what
// was thrown.
template <class Work>
const char* Guarded(const Work& work) noexcept {
    try {
        work();
        return nullptr;
    } catch (const std::bad_alloc&) {
        return "memory ran out";
    } catch (...) {
        return "the work broke off for a reason that is not known";
    }
}

}  // namespace replay
