#pragma once

#include <cstddef>

namespace headless {

// What is allocated on the host's heap at this moment.
struct HeapUse {
    std::size_t blocks = 0;
    std::size_t bytes = 0;
};

HeapUse CurrentHeapUse();

}  // namespace headless
