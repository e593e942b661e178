#include "support/puppet/module/routine.h"
#include "support/puppet/stage.h"

PUPPET_ROUTINE std::uint32_t getVersion();

std::uint32_t getVersion() {
    return puppet::TheStage().version;
}
