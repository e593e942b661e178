#include "bench/allocations.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t allocations = 0;
std::size_t liveBytes = 0;

}  // namespace

std::size_t Allocations() {
    return allocations;
}

std::size_t LiveBytes() {
    return liveBytes;
}

void* operator new(std::size_t size) {
    void* const block = std::malloc(size > 0 ? size : 1);
    if (!block) throw std::bad_alloc();
    ++allocations;
    liveBytes += malloc_usable_size(block);
    return block;
}

void operator delete(void* block) noexcept {
    liveBytes -= malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
