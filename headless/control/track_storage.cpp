#include "control/track_storage.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <type_traits>

#include "host/quat.h"

namespace headless {
namespace {

static_assert(std::endian::native == std::endian::little, "keys are stored as they lie in memory");

constexpr std::uint32_t kTrackVersion = 1;

// How many keys are read or written at once, so that an announced number costs no memory.
constexpr std::size_t kKeysAtOnce = 1024;

struct TrackHeader {
    std::uint32_t version;
    std::uint32_t keyBytes;
    std::uint32_t keyCount;
};

template <class T>
bool ReadWhole(ILoad& load, T& value) {
    return load.Read(&value, sizeof value, nullptr) == IO_OK;
}

template <class T>
bool ReadKeys(ILoad& load, std::vector<TrackKey<T>>& keys, std::size_t count) {
    while (keys.size() < count) {
        const std::size_t before = keys.size();
        const std::size_t wanted = std::min(kKeysAtOnce, count - before);
        keys.resize(before + wanted);
        std::uint32_t bytes = 0;
        load.Read(&keys[before], static_cast<std::uint32_t>(wanted * sizeof keys[0]), &bytes);
        keys.resize(before + bytes / sizeof keys[0]);
        if (keys.size() < before + wanted) return false;
    }
    return true;
}

// Of a run of equal times the last key stays.
template <class T>
void PutInOrder(std::vector<TrackKey<T>>& keys) {
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    const auto kept = std::unique(keys.rbegin(), keys.rend(),
                                  [](const auto& a, const auto& b) { return a.time == b.time; });
    keys.erase(keys.begin(), kept.base());
}

}  // namespace

template <class T>
void SaveTrack(ISave& save, std::uint16_t id, const KeyTrack<T>& track) {
    static_assert(std::is_trivially_copyable_v<TrackKey<T>>);
    const auto& keys = track.keys;
    const TrackHeader header{kTrackVersion, sizeof(TrackKey<T>),
                             static_cast<std::uint32_t>(keys.size())};
    save.BeginChunk(id);
    save.Write(&header, sizeof header, nullptr);
    save.Write(&track.rest, sizeof track.rest, nullptr);
    for (std::size_t first = 0; first < keys.size(); first += kKeysAtOnce) {
        const std::size_t count = std::min(kKeysAtOnce, keys.size() - first);
        save.Write(&keys[first], static_cast<std::uint32_t>(count * sizeof keys[0]), nullptr);
    }
    save.EndChunk();
}

template <class T>
bool LoadTrack(ILoad& load, KeyTrack<T>& track) {
    TrackHeader header{};
    if (!ReadWhole(load, header)) return false;
    if (header.version != kTrackVersion || header.keyBytes != sizeof(TrackKey<T>)) return false;
    if (!ReadWhole(load, track.rest)) return false;
    track.keys.clear();
    const bool whole = ReadKeys(load, track.keys, header.keyCount);
    PutInOrder(track.keys);
    return whole;
}

template void SaveTrack(ISave&, std::uint16_t, const KeyTrack<float>&);
template void SaveTrack(ISave&, std::uint16_t, const KeyTrack<Point3>&);
template void SaveTrack(ISave&, std::uint16_t, const KeyTrack<Quat>&);
template bool LoadTrack(ILoad&, KeyTrack<float>&);
template bool LoadTrack(ILoad&, KeyTrack<Point3>&);
template bool LoadTrack(ILoad&, KeyTrack<Quat>&);

}  // namespace headless
