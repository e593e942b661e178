#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "headless/values/transform_parts.h"
#include "host/point3.h"
#include "host/storage.h"
#include "host/types.h"

namespace headless {

template <class T>
struct TrackKey {
    TimeValue time = 0;          // ticks
    std::uint32_t selected = 0;  // 0: not
    T value{};

    friend bool operator==(const TrackKey&, const TrackKey&) = default;
};

inline float Between(float a, float b, double f) {
    return static_cast<float>(a + (static_cast<double>(b) - a) * f);
}
inline Point3 Between(const Point3& a, const Point3& b, double f) {
    return {Between(a.x, b.x, f), Between(a.y, b.y, f), Between(a.z, b.z, f)};
}
inline Quat Between(const Quat& a, const Quat& b, double f) {
    return Slerp(a, b, f);
}

// One animated value: what it is before the first key, and keys whose times strictly rise. Between
// keys it goes straight, a rotation along the shorter arc; after the last key it stays.
template <class T>
struct KeyTrack {
    T rest{};
    std::vector<TrackKey<T>> keys;

    // Of the first key that is not earlier; the number of keys if there is none.
    std::size_t FirstNotBefore(TimeValue t) const {
        if (keys.empty() || keys.back().time < t) return keys.size();
        const auto found =
            std::lower_bound(keys.begin(), keys.end(), t,
                             [](const TrackKey<T>& key, TimeValue at) { return key.time < at; });
        return static_cast<std::size_t>(found - keys.begin());
    }

    bool HasKeyAt(TimeValue t) const {
        const std::size_t index = FirstNotBefore(t);
        return index < keys.size() && keys[index].time == t;
    }

    T Evaluate(TimeValue t) const {
        const std::size_t right = FirstNotBefore(t);
        if (right < keys.size() && keys[right].time == t) return keys[right].value;
        if (right == 0) return rest;
        const TrackKey<T>& a = keys[right - 1];
        if (right == keys.size()) return a.value;
        const TrackKey<T>& b = keys[right];
        const double f = (static_cast<double>(t) - a.time) / (static_cast<double>(b.time) - a.time);
        return Between(a.value, b.value, f);
    }
};

// A track in one chunk: version, bytes of a key and number of keys, 4 bytes each, then the value
// before the first key, then the keys: time, selection and value. Floats and integers of 4 bytes,
// little-endian.
template <class T>
void SaveTrack(ISave& save, std::uint16_t id, const KeyTrack<T>& track);

// Reads the contents of such a chunk, which is open. False: it is of another version, or fewer keys
// are there than announced; those that are whole are kept. Keys out of order are sorted, and of
// equal times the last stands.
template <class T>
bool LoadTrack(ILoad& load, KeyTrack<T>& track);

}  // namespace headless
