#include "headless/control/linear_float.h"

#include "headless/control/track_storage.h"
#include "headless/references/fresh.h"
#include "headless/storage/plain_chunks.h"

namespace headless {
namespace {

constexpr std::uint16_t kKeysChunk = 1;

}  // namespace

IOResult LinearFloat::Save(ISave* save) {
    SaveTrack(*save, kKeysChunk, Track().Keys());
    return IO_OK;
}

IOResult LinearFloat::Load(ILoad* load) {
    KeyTrack<float>& keys = Track().UnrecordedKeys();
    keys = {};
    return LoadChunks(*load,
                      [&](std::uint16_t id) { return id == kKeysChunk && LoadTrack(*load, keys); });
}

RefTargetHandle LinearFloat::Clone(RemapDir& remap) {
    Fresh<LinearFloat> copy(new LinearFloat);
    copy->Track().UnrecordedKeys() = Track().Keys();
    BaseClone(this, copy.get(), remap);
    return copy.release();
}

void LinearFloat::GetValue(TimeValue t, void* value, Interval& valid, GetSetMethod method) {
    auto& number = *static_cast<float*>(value);
    const float own = Track().Keys().Evaluate(t);
    number = method == CTRL_ABSOLUTE ? own : number + own;
    if (NumKeys() > 0) valid.SetInstant(t);
}

void LinearFloat::SetValue(TimeValue t, void* value, int, GetSetMethod method) {
    const float number = *static_cast<const float*>(value);
    const float before = method == CTRL_ABSOLUTE ? 0 : Track().Keys().Evaluate(t);
    Track().SetValue(t, before + number);
    Track().Announce();
}

}  // namespace headless
