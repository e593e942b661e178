#include "headless/scene_file/stored_keys.h"

#include <cstring>
#include <memory>
#include <set>

#include "headless/control/keyframe_chunk.h"
#include "headless/control/own_controllers.h"
#include "headless/memory_chunks.h"
#include "headless/scene/hash.h"

namespace headless {
namespace {

constexpr std::size_t kTranslationOffset = 9 * sizeof(float);  // the fourth row of a matrix

StoredKey KeyAt(const KeyframeChunk& chunk, std::size_t index) {
    StoredKey key;
    key.time = chunk.Time(index);
    const auto value = chunk.Value(index);
    if (chunk.IsMatrix())
        std::memcpy(&key.value, value.data() + kTranslationOffset, sizeof key.value);
    else
        std::memcpy(&key.value.x, value.data(), sizeof key.value.x);
    Hash hash;
    hash.Add(chunk.Record(index));
    key.hash = hash.Value();
    return key;
}

StoredKeys KeysOf(const KeyframeChunk& chunk) {
    StoredKeys keys{chunk.IsMatrix(), {}};
    keys.keys.reserve(chunk.Count());
    for (std::size_t i = 0; i < chunk.Count(); ++i)
        keys.keys.push_back(KeyAt(chunk, i));
    return keys;
}

struct DeleteThis {
    void operator()(Control* control) const { control->DeleteThis(); }
};
using OwnedControl = std::unique_ptr<Control, DeleteThis>;

void AddTimes(Animatable& track, std::set<TimeValue>& times) {
    for (int i = 0; i < track.NumKeys(); ++i)
        times.insert(times.end(), track.GetKeyTime(i));
}

template <class Value>
StoredKey Evaluate(Control& control, TimeValue t, Value& value) {
    Interval valid = FOREVER;
    control.GetValue(t, &value, valid, CTRL_ABSOLUTE);
    Hash hash;
    hash.Add(std::as_bytes(std::span(&value, 1)));
    return {t, {}, hash.Value()};
}

StoredKey EvaluateTransform(Control& control, TimeValue t) {
    Matrix3 matrix;
    StoredKey key = Evaluate(control, t, matrix);
    key.value = matrix.GetTrans();
    return key;
}

StoredKey EvaluateNumber(Control& control, TimeValue t) {
    float number = 0;
    StoredKey key = Evaluate(control, t, number);
    key.value.x = number;
    return key;
}

StoredKeys KeysOf(Control& control) {
    std::set<TimeValue> times;
    AddTimes(control, times);
    for (int i = 0; i < control.NumSubs(); ++i)
        AddTimes(*control.SubAnim(i), times);
    StoredKeys keys{control.SuperClassID() == CTRL_MATRIX3_CLASS_ID, {}};
    for (const TimeValue t : times)
        keys.keys.push_back(keys.isTransform ? EvaluateTransform(control, t)
                                             : EvaluateNumber(control, t));
    return keys;
}

}  // namespace

StoredKeys KeysOf(const StoredClass& type, std::span<const std::byte> saved) {
    if (IsKeyframes(type.id)) {
        const auto chunk = KeyframeChunk::In(saved);
        return chunk ? KeysOf(*chunk) : StoredKeys();
    }
    const OwnedControl control(NewControl(type.superClass, type.id));
    if (!control) return {};
    LoadBytes(saved, *control);
    return KeysOf(*control);
}

}  // namespace headless
