#include "bench/bench_world.h"

#include "adaptor/max_adaptor_interface.h"
#include "adaptor/utility_manager.h"
#include "core_link/core_link.h"
#include "host/interface.h"
#include "plugin/descriptors.h"
#include "resources/resource_ids.h"
#include "tvl/ids.h"
#include "tvl/singleton.h"

void IdleCore::GetOptionValue(int option, bool* value) {
    if (option == TVL::kOptimisedControllers) *value = true;
}

// The global utility is left out: it would look for an installed Core and load that.
BenchWorld::BenchWorld() {
    for (int index = 0; index < kDescriptorCount; ++index) {
        ClassDesc* const descriptor = DescriptorAt(index);
        if (descriptor->SuperClassID() != GUP_CLASS_ID) session_.RegisterClass(descriptor);
    }
    session_.Start();
    TheCoreLink().core = &core_;
}

BenchWorld::~BenchWorld() {
    session_.ShutDown();
    TheCoreLink().core = nullptr;
    MaxAdaptorInterface& adaptor = *MaxAdaptorInterface::GetInstance();
    for (TVL::CNode* node : adaptor.GetNodes(nullptr))
        static_cast<TVL::CoreNode*>(node)->Destroy();
    TVL::Util::SingletonCollector::GetInstance()->DestroyAll();
}

TVL::CoreNode& BenchWorld::MakeNode() {
    TVL::CNode* const node =
        MaxAdaptorInterface::GetInstance()->CreateHelperNode(nullptr, "Hip", nullptr, {}, nullptr);
    return static_cast<TVL::CoreNode&>(*node);
}
