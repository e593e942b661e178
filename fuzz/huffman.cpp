#include <algorithm>

#include "fuzz/fuzzed.h"
#include "tvl/huffman_buffer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const HuffmanBuffer buffer(data, static_cast<std::int32_t>(size));
    constexpr auto kMostLone = static_cast<std::size_t>(HuffmanBuffer::kMostLoneSymbols);
    Require(buffer.Decompress().size() <= std::max(8 * size, kMostLone));
    Require(buffer.Text().size() <= 8 * size);
    return 0;
}
