#pragma once

#include "controllers/key_table.h"
#include "host/storage.h"

// How a key table stands in a scene file: one chunk with id 1 of little-endian bytes, holding the
// format version 100, the size of a key record (12 for float, 60 for Matrix3) and the number of
// keys, 32 bits signed each, then a record for each key and one for the cached key.

template <class T>
void SaveKeys(ISave& save, const KeyTable<T>& table);

// Adds the chunk's keys to the table. A chunk of another id, version or record size is skipped. The
// announced number is believed only as far as records are there: reading stops at the first that is
// not whole, and keeps those before it. Keys out of order are sorted; of equal times the last
// stands.
template <class T>
void LoadKeys(ILoad& load, KeyTable<T>& table);

extern template void SaveKeys(ISave&, const KeyTable<float>&);
extern template void SaveKeys(ISave&, const KeyTable<Matrix3>&);
extern template void LoadKeys(ILoad&, KeyTable<float>&);
extern template void LoadKeys(ILoad&, KeyTable<Matrix3>&);
