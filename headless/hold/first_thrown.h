#pragma once

#include <exception>

namespace headless {

// For work of several parts, each of them some guest's, that must all be done: an exception waits
// until the others have had their turn. Only the first is kept.
class FirstThrown {
  public:
    template <class Part>
    void Try(Part part) noexcept {
        try {
            part();
        } catch (...) {
            if (!thrown_) thrown_ = std::current_exception();
        }
    }

    void Rethrow() const {
        if (thrown_) std::rethrow_exception(thrown_);
    }

  private:
    std::exception_ptr thrown_;
};

}  // namespace headless
