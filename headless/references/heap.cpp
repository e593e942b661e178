#include "headless/references/heap.h"

#include <new>

#include "host/heap.h"

namespace {

headless::HeapUse use;

}  // namespace

void* MaxHeapOperators::operator new(std::size_t size) {
    void* block = ::operator new(size);
    ++use.blocks;
    use.bytes += size;
    return block;
}

void MaxHeapOperators::operator delete(void* block, std::size_t size) noexcept {
    if (block == nullptr) return;
    --use.blocks;
    use.bytes -= size;
    ::operator delete(block);
}

headless::HeapUse headless::CurrentHeapUse() {
    return use;
}
