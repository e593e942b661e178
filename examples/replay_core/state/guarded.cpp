#include "replay_core/state/guarded.h"

#include "tvl/log.h"

namespace replay {

void LogFault(const char* fault) noexcept {
    if (!fault) return;
    Guarded([fault] { TVL::Log(TVL::Log::kError).Write(fault); });
}

}  // namespace replay
