#include "platform/modules.h"
#include "tests/support/puppet/stage.h"

MODULE_ROUTINE std::uint32_t getVersion();

std::uint32_t getVersion() {
    if (puppet::TheStage().onVersion) puppet::TheStage().onVersion();
    return puppet::TheStage().version;
}
