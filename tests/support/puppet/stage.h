#pragma once

#include <cstdint>
#include <functional>

#include "tvl/core_interface.h"
#include "tvl/error_code.h"
#include "tvl/log.h"

// Where the puppet Core, a library that the adaptor loads and frees as it would any Core, meets the
// test that plays it. A library of its own, so that the puppet can really be unloaded.
namespace puppet {

struct Stage {
    // Set by the test.
    std::uint32_t version = TVL::kInterfaceVersion;  // of the Core
    CoreInterface* core = nullptr;                   // what `attach` gives; null refuses
    std::function<void()> onVersion;                 // inside the routine
    std::function<void()> onAttach;                  // inside the routine, the adaptor being there
    std::function<void()> onDetach;                  // inside the routine

    // Somebody between adaptor and puppet, who is called as the routines are, and given them.
    std::function<CoreInterface*(TVL::AdaptorInterface*, TVL::AttachRoutine*)> between;
    std::function<void(CoreInterface*, TVL::DetachRoutine*)> betweenAtEnd;

    // Set by the puppet.
    TVL::AdaptorInterface* adaptor = nullptr;  // from `attach` to `detach`
    CoreInterface* detached = nullptr;         // what `detach` was given
    int attachCount = 0;
    int detachCount = 0;
    bool isLoaded = false;

    // What the puppet's library has for itself, as if it were in use there; set by `attach`.
    TVL::Log* (*log)() = nullptr;
    TVL::ErrorCode* (*errorCode)() = nullptr;

    // Litters the adaptor with all that a Core can leave there; whatever is called on it later runs
    // code of the puppet's library. Gives a button for PuppetCore::otherButton, which draws the
    // adaptor's message node into the net on both sides.
    TVL::Util::MessageNode* (*litter)(TVL::AdaptorInterface& adaptor) = nullptr;
};

PUPPET_API Stage& TheStage();

}  // namespace puppet
