#pragma once

#include <cstddef>

// Room for the undo records of keys. They come by the thousand in a row and go so, and are small:
// one by one they would cost the host's heap more time than what they record. A block of that heap
// holds some dozens, and goes with the last of them.
class RecordRoom {
  public:
    static constexpr std::size_t kMost = 512;  // bytes of a record
    static constexpr std::size_t kAlignment = alignof(void*);

    static void* Take(std::size_t bytes);
    static void GiveBack(void* record) noexcept;
};
