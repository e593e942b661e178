#include <malloc.h>

#include "platform/testing.h"

namespace platform {

std::size_t RoomOfBlock(void* block) {
    return block ? _msize(block) : 0;
}

}  // namespace platform
