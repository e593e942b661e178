#pragma once

#include <cstdint>

#include "headless/control/key_track.h"
#include "host/storage.h"

namespace headless {

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
