#include "headless/storage/checksum.h"

#include <zlib.h>

namespace headless {

void Checksum::Add(std::span<const std::byte> bytes) {
    value_ = static_cast<std::uint32_t>(
        crc32_z(value_, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace headless
