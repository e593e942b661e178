#include <cstdint>

#include "replay_core/module/replay_core.h"
#include "replay_core/recorder/brackets.h"
#include "tvl/core_interface.h"

// The three routines by which an adaptor finds the Core. CORE_ROUTINE is what marks an export on
// the system for which the Core is built.

extern "C" CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

extern "C" CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    if (!adaptor) return nullptr;
    CoreInterface* core = nullptr;
    replay::Guarded([&] { core = new replay::ReplayCore(*adaptor); });
    return core;
}

extern "C" CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<replay::ReplayCore*>(core);
}
