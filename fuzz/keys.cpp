#include <cstdint>

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "fuzz/fuzzed_world.h"

namespace {

template <class C>
void Load(std::span<const std::byte> bytes) {
    void* const made = GetCOREInterface()->CreateInstance(C::kSuperClassID, C::kClassID);
    auto& control = static_cast<C&>(*static_cast<Animatable*>(made));
    LoadAndSave(control, bytes);
    for (int i = 1; i < control.NumKeys(); ++i)
        Require(control.GetKeyTime(i - 1) < control.GetKeyTime(i));
    for (const TimeValue t : {INT32_MIN, 0, 100, INT32_MAX})
        control.GetKeyAtTime(t);
    control.DeleteMe();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld::Get();
    Load<ScalarControl>(AsBytes(data, size));
    Load<TransformControl>(AsBytes(data, size));
    return 0;
}
