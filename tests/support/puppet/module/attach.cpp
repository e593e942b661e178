#include "platform/modules.h"
#include "tests/support/puppet/module/litter.h"
#include "tests/support/puppet/stage.h"

MODULE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor);

CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    puppet::Stage& stage = puppet::TheStage();
    ++stage.attachCount;
    stage.adaptor = adaptor;
    stage.log = &TVL::Log::GetInstance;
    stage.errorCode = &TVL::ErrorCode::GetInstance;
    stage.litter = &puppet::Litter;
    if (stage.onAttach) stage.onAttach();
    return stage.core;
}
