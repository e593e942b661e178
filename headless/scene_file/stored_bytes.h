#pragma once

#include <cstddef>
#include <vector>

#include "scene_file/scene_document.h"
#include "storage/byte_source.h"

namespace headless {

// A range of a file that has been checked.
inline std::vector<std::byte> BytesOf(ByteSource& source, const StoredRange& range) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(range.Size()));
    bytes.resize(source.ReadAt(range.begin, bytes));
    return bytes;
}

}  // namespace headless
