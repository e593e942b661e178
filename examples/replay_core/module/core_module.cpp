#include <cstdint>

#include "replay_core/module/replay_core.h"
#include "replay_core/recorder/brackets.h"
#include "tvl/core_interface.h"

// The three routines by which an adaptor finds the Core.

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return TVL::kInterfaceVersion;
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    if (!adaptor) return nullptr;
    CoreInterface* core = nullptr;
    replay::Guarded([&] { core = new replay::ReplayCore(*adaptor); });
    return core;
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    delete static_cast<replay::ReplayCore*>(core);
}
