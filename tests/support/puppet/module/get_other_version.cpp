#include "support/puppet/module/routine.h"
#include "tvl/core_interface.h"

PUPPET_ROUTINE std::uint32_t getVersion();

// In any process, also in one where no test sets the stage.
std::uint32_t getVersion() {
    return TVL::kInterfaceVersion + 1;
}
