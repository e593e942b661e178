#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tvl/huffman_buffer.h"

namespace replay {

// The coded bytes are never more than the data, so that with this much the size of the stream, too,
// is one that the codecs of the contract can count.
inline constexpr std::size_t kMostCompressedData =
    std::numeric_limits<std::int32_t>::max() - HuffmanBuffer::kHeaderBytes -
    HuffmanBuffer::kMostSymbols * HuffmanBuffer::kEntryBytes;

// The compressed stream that HuffmanBuffer::Decompress turns back into the data; nothing for more
// than kMostCompressedData. No data gives a stream of no symbols.
std::optional<std::vector<std::uint8_t>> Compress(std::span<const std::uint8_t> data);

// What an element with the attribute `compressed` of "1" holds as its only text in place of an
// element with the compact text `plain`: the base64 form of the compressed stream of that text,
// with the NUL byte that ends it. Nothing if it is too long.
std::optional<std::string> PackedText(const std::string& plain);

}  // namespace replay
