#include "fuzz/fuzzed_world.h"
#include "headless/viewport.h"
#include "objects/custom_helper_object.h"

namespace {

// What a scene file gets from it, read and saved once more, is the same.
void RequireStable(CustomHelperObject& object) {
    const std::vector<std::byte> saved = headless::SavedBytes(object);
    auto* const again = new CustomHelperObject;
    headless::LoadBytes(saved, *again);
    Require(headless::SavedBytes(*again) == saved);
    again->DeleteMe();
}

// Draws it as it is and selected, and asks whether the whole picture hits it.
void Show(FuzzedWorld& world, CustomHelperObject& object) {
    INode* const node = GetCOREInterface()->CreateObjectNode(&object);
    const headless::ViewportSettings settings;
    const HitRegion all{HITTYPE_RECT, 1, 0, {{0, 0}, {settings.width, settings.height}}};
    headless::DrawScene(settings, 0);
    headless::NodesHit(settings, 0, all);
    world.Session().Select({node->GetName()});
    headless::DrawScene(settings, 0);
    world.Clear();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld& world = FuzzedWorld::Get();
    auto* const object = new CustomHelperObject;
    LoadAndSave(*object, AsBytes(data, size));
    RequireStable(*object);
    Show(world, *object);
    return 0;
}
