#include "headless/scene/hash.h"

#include <algorithm>
#include <cstring>

namespace headless {

void Hash::Add(std::uint64_t number) {
    state_ ^= number;
    state_ *= 0xFF51AFD7ED558CCD;
    state_ ^= state_ >> 32;
}

void Hash::Add(std::span<const std::byte> bytes) {
    Add(static_cast<std::uint64_t>(bytes.size()));
    while (!bytes.empty()) {
        std::uint64_t word = 0;
        const std::size_t count = std::min(sizeof word, bytes.size());
        std::memcpy(&word, bytes.data(), count);
        Add(word);
        bytes = bytes.subspan(count);
    }
}

void Hash::Add(std::string_view text) {
    Add(std::as_bytes(std::span(text)));
}

}  // namespace headless
