#include "adaptor/utility_manager.h"
#include "fuzz/fuzzed_world.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld& world = FuzzedWorld::Get();
    headless::LoadBytes(AsBytes(data, size),
                        [](ILoad* load) { return UtilityManager::Get().Load(load); });
    world.Clear();
    return 0;
}
