#pragma once

#include <cstdint>
#include <vector>

// One node of the code tree. A node whose `left` is negative is a leaf.
// The order of the fields is part of the contract.
struct HuffmanRecord {
    std::int32_t left = -1;   // index of the child for bit 0
    std::int32_t right = -1;  // index of the child for bit 1
    std::int32_t parent = -1;
    std::int32_t frequency = 0;  // of an inner node: the sum of its children's
    std::int32_t symbol = -1;    // byte value of a leaf
};

// Turns leaves, ascending by frequency, into the tree: 2N-1 records ascending by frequency, the
// root last. Reader and writer get the same tree from the same table.
void BuildHuffmanTree(std::vector<HuffmanRecord>& records);

// Bytes that may be a compressed stream: a static Huffman code with its table of frequencies in
// front. The format, numbers little-endian:
//
//   0       u32     0x5331CA
//   4       u32     100
//   8       u32     N, the number of symbols, at most 256
//   12      i32     size of the uncompressed data in bytes
//   16      N x 5   symbol (u8) and frequency (u32), ascending by frequency
//   16+5N   bits    the code of each byte in turn, from the lowest bit of each byte to the highest
class HuffmanBuffer {
  public:
    HuffmanBuffer(const void* bytes, std::int32_t count);

    // The uncompressed data. Bytes that are no such stream come back as they are.
    std::vector<std::uint8_t> Decompress() const;

  private:
    std::vector<std::uint8_t> bytes_;
};
