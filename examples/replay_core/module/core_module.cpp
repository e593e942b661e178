#include <cstdint>

#include "replay_core/module/replay_core.h"
#include "replay_core/state/guarded.h"
#include "tvl/core_interface.h"

// The three routines by which an adaptor finds the Core.

#if defined(_WIN32)
#define REPLAY_CORE_EXPORT extern "C" __declspec(dllexport)
#else
#define REPLAY_CORE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

REPLAY_CORE_EXPORT std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

REPLAY_CORE_EXPORT CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    if (!adaptor) return nullptr;
    CoreInterface* core = nullptr;
    replay::Guarded([&] { core = new replay::ReplayCore(*adaptor); });
    return core;
}

REPLAY_CORE_EXPORT void detach(CoreInterface* core) {
    replay::Guarded([&] { delete static_cast<replay::ReplayCore*>(core); });
}
