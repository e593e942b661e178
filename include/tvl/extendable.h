#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace TVL {

// Base of everything that crosses between adaptor and Core and may grow: an extension is a numbered
// operation with one pointer argument, which an object lists if it answers it. What a number means,
// what its argument points to and what its result says belongs to the class that lists it.
// The order of the virtual operations is part of the contract.
class CExtendable {
  public:
    // Runs an extension, by its id and with its argument. An id that the object does not know gives
    // 0 and has no effect, but that a node of the adaptor's warns of it in the trace.
    virtual std::intptr_t HandleExtension(int, void*) { return 0; }

    // The ids that the object announces, in an order of its own.
    virtual std::vector<int> ListExtensions() { return {}; }

    // Whether `id` stands in ListExtensions().
    virtual bool HasExtension(int id) {
        const std::vector<int> ids = ListExtensions();
        return std::find(ids.begin(), ids.end(), id) != ids.end();
    }

  protected:
    CExtendable() = default;
    CExtendable(const CExtendable&) = default;
    CExtendable& operator=(const CExtendable&) = default;
    ~CExtendable() = default;
};

}  // namespace TVL
