#include <malloc.h>

#include "platform/testing.h"

namespace platform {

std::size_t RoomOfBlock(void* block) {
    return malloc_usable_size(block);
}

}  // namespace platform
