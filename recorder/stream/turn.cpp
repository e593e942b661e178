#include "recorder/stream/turn.h"

#include <thread>

#if defined(_WIN32)
#include "platform/win32.h"
#else
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace recorder {
namespace {

// Has every thread of this process see what was written before, and this one what they wrote.
// False if the system does not know how.
#if defined(_WIN32)
bool CanOrderAll() {
    return true;
}
void OrderAll() {
    FlushProcessWriteBuffers();
}
#else
bool CanOrderAll() {
    static const bool can =
        syscall(__NR_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
    return can;
}
void OrderAll() {
    syscall(__NR_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0);
}
#endif

}  // namespace

#if defined(_WIN32)
std::uintptr_t ThisThread() noexcept {
    return GetCurrentThreadId();
}
#endif

// Nobody is in meanwhile, so that nobody is left who has not ordered all.
void Turns::Favour() noexcept {
    if (favoured_ != 0 || !CanOrderAll()) return;
    TakeSlowly();
    favoured_ = ThisThread();
    GiveSlowly();
}

void Turns::TakeSlowly() noexcept {
    if (favoured_.load(std::memory_order_relaxed) == ThisThread()) {
        do {
            isFavouredIn_.store(false, std::memory_order_release);
            std::this_thread::yield();
        } while (!TakeFast());
        return;
    }
    while (others_.test_and_set(std::memory_order_acquire))
        std::this_thread::yield();
    isOtherIn_.store(true, std::memory_order_relaxed);
    if (favoured_ == 0) return;
    OrderAll();
    while (isFavouredIn_.load(std::memory_order_acquire))
        std::this_thread::yield();
}

void Turns::GiveSlowly() noexcept {
    isOtherIn_.store(false, std::memory_order_release);
    others_.clear(std::memory_order_release);
}

}  // namespace recorder
