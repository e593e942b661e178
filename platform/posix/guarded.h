#pragma once

#include <utility>

namespace platform {

// Runs `body` and returns what it returns, or `failure` if it throws. Callers of a system service
// expect a result, never an exception.
template <class Result, class Body>
Result Guarded(Result failure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return failure;
    }
}

}  // namespace platform
