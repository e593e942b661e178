#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "headless/headless_api.h"
#include "host/reference.h"
#include "host/storage.h"

// Saving and loading as in a scene file, but in memory, so that the storage of one object can be
// checked alone.
namespace headless {

// The bytes that `save` writes: chunk after chunk, each as its id in 2 bytes, the length of its
// contents in 8, and its contents. Chunks that `save` leaves open are closed behind it.
HEADLESS_API std::vector<std::byte> SavedBytes(const std::function<IOResult(ISave*)>& save);

// Runs `load` over such bytes, and gives its result.
HEADLESS_API IOResult LoadBytes(std::span<const std::byte> bytes,
                                const std::function<IOResult(ILoad*)>& load);

inline std::vector<std::byte> SavedBytes(ReferenceMaker& object) {
    return SavedBytes([&object](ISave* save) { return object.Save(save); });
}

inline IOResult LoadBytes(std::span<const std::byte> bytes, ReferenceMaker& object) {
    return LoadBytes(bytes, [&object](ILoad* load) { return object.Load(load); });
}

}  // namespace headless
