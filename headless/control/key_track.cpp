#include "headless/control/key_track.h"

#include <algorithm>
#include <iterator>

#include "headless/storage/plain_chunks.h"
#include "host/matrix3.h"

namespace headless {
namespace {

constexpr std::uint32_t kTrackVersion = 1;

struct TrackHeader {
    std::uint32_t version;
    std::uint32_t keyBytes;
    std::uint32_t keyCount;
};

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
    const auto& keys = track.keys;
    const TrackHeader header{kTrackVersion, sizeof(TrackKey<T>),
                             static_cast<std::uint32_t>(keys.size())};
    save.BeginChunk(id);
    SaveValue(save, header);
    SaveValue(save, track.rest);
    SaveItems(save, keys);
    save.EndChunk();
}

template <class T>
bool LoadTrack(ILoad& load, KeyTrack<T>& track) {
    TrackHeader header{};
    if (!LoadValue(load, header)) return false;
    if (header.version != kTrackVersion || header.keyBytes != sizeof(TrackKey<T>)) return false;
    if (!LoadValue(load, track.rest)) return false;
    const bool whole = LoadItems(load, track.keys, header.keyCount);
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
