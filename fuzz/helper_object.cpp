#include "fuzzed_world.h"
#include "objects/custom_helper_object.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld::Get();
    auto* const object = new CustomHelperObject;
    LoadAndSave(*object, AsBytes(data, size));
    Box3 box;
    object->GetLocalBoundBox(0, nullptr, nullptr, box);
    object->RebuildDisplayMesh();
    object->DeleteMe();
    return 0;
}
