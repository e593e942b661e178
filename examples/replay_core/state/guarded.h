#pragma once

#include <new>

namespace replay {

// Nothing may be thrown across the boundary to the adaptor: every entry from its side runs its work
// through Guarded. The result is null, or says in a few words what was caught.
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

// Tells what was caught, if anything was, in the trace, the only place for a fault outside of a
// request.
void LogFault(const char* fault) noexcept;

}  // namespace replay
