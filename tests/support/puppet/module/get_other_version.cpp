#include "platform/modules.h"
#include "tvl/core_interface.h"

MODULE_ROUTINE std::uint32_t getVersion();

// In any process, also in one where no test sets the stage.
std::uint32_t getVersion() {
    return TVL::kInterfaceVersion + 1;
}
