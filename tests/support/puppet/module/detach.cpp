#include "platform/modules.h"
#include "tests/support/puppet/stage.h"

MODULE_ROUTINE void detach(CoreInterface* core);

void detach(CoreInterface* core) {
    puppet::Stage& stage = puppet::TheStage();
    ++stage.detachCount;
    stage.detached = core;
    if (stage.onDetach) stage.onDetach();
    stage.adaptor = nullptr;
}
