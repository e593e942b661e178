#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tvl/huffman_buffer.h"

inline constexpr std::size_t kBitsPerByte = 8;

// Decodes the coded data of a stream of more than one symbol, at most `size` of them or as far as
// there are bits for whole ones. In long data a table is looked up with the next bits, which gives
// the symbols that these hold, several at a look; codes that are longer than a look, and the last
// bytes of data and result, are walked bit by bit down the tree.
std::vector<std::uint8_t> DecodeHuffman(std::span<const HuffmanRecord> tree,
                                        std::span<const std::uint8_t> coded, std::size_t size);
