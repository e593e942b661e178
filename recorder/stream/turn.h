#pragma once

#include <atomic>
#include <cstdint>

namespace recorder {

// Tells the thread that calls from all others that live.
#if defined(_WIN32)
std::uintptr_t ThisThread() noexcept;
#else
inline std::uintptr_t ThisThread() noexcept {
    return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer());
}
#endif

// Lets one thread at a time through. Nearly all calls come from one thread, the host's main one,
// and cost it two plain stores: whoever else comes makes the system see to it that both know of
// each other, which takes a microsecond or more.
class Turns {
  public:
    // The thread that calls is the favoured one from here on, if there was none before.
    void Favour() noexcept;

    void Take() noexcept {
        if (favoured_.load(std::memory_order_relaxed) != ThisThread() || !TakeFast()) TakeSlowly();
    }
    void Give() noexcept {
        if (favoured_.load(std::memory_order_relaxed) == ThisThread())
            isFavouredIn_.store(false, std::memory_order_release);
        else
            GiveSlowly();
    }

  private:
    // The compiler keeps the order of the two; the processor need not, since others force it to.
    bool TakeFast() noexcept {
        isFavouredIn_.store(true, std::memory_order_relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        return !isOtherIn_.load(std::memory_order_acquire);
    }
    void TakeSlowly() noexcept;
    void GiveSlowly() noexcept;

    std::atomic<std::uintptr_t> favoured_{0};
    std::atomic<bool> isFavouredIn_{false};
    std::atomic<bool> isOtherIn_{false};  // or wants to be
    std::atomic_flag others_;             // only one of these wants to be
};

}  // namespace recorder
