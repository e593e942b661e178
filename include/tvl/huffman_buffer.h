#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One node of the code tree. A node whose `left` is negative is a leaf.
// The order of the fields is part of the contract.
struct HuffmanRecord {
    std::int32_t left = -1;      // index of the child for bit 0
    std::int32_t right = -1;     // index of the child for bit 1
    std::int32_t parent = -1;    // what a writer climbs by, from a leaf to the root
    std::int32_t frequency = 0;  // of an inner node: the sum of its children's
    std::int32_t symbol = -1;    // byte value of a leaf
};

// Builds the tree of D. A. Huffman, "A Method for the Construction of Minimum-Redundancy Codes"
// (1952), from its leaves in ascending order of frequency: N leaves become 2N-1 records, leaves and
// inner nodes together ascending by frequency, the root last. One leaf or none stays as it is.
// There is no tree in a stream, so ties are settled here for reader and writer alike: the two
// lowest records are joined, the first of them as `left`, and their parent goes behind all records
// of equal frequency. Leaves are not sorted; in another order they give another tree. Their links
// are cleared, and a sum beyond the type's range stays at the largest number. Takes time that grows
// with the square of N.
void BuildHuffmanTree(std::vector<HuffmanRecord>& records);

// Bytes that may be a compressed stream: a static Huffman code, with its table of frequencies in
// front. The format, numbers little-endian and unaligned:
//
//   0       u32     kMagic
//   4       u32     kFormat
//   8       u32     N, the number of symbols, at most kMostSymbols
//   12      i32     size of the uncompressed data in bytes
//   16      N x 5   symbol (u8) and frequency (u32), ascending by frequency
//   16+5N   bits    the way from the root to each byte's leaf in turn, from the lowest bit of each
//                   byte to the highest; what is left of the last byte means nothing
//
// A writer lists the byte values that occur, entries of equal frequency in any order; the sum of
// the frequencies is the size. A lone symbol (N = 1) is its tree's root and takes no bits at all.
// There is no checksum. The example Core's state/compress.cpp is a writer.
class HuffmanBuffer {
  public:
    static constexpr std::uint32_t kMagic = 0x5331CA;
    static constexpr std::uint32_t kFormat = 100;
    static constexpr std::uint32_t kMostSymbols = 256;
    static constexpr std::size_t kHeaderBytes = 16;
    static constexpr std::size_t kEntryBytes = 5;

    // No stream proves how often its lone symbol is repeated: more than this is not believed. It
    // bounds one stream, not the many that a file can hold.
    static constexpr std::int32_t kMostLoneSymbols = 64 << 20;

    // Holds a copy of `count` bytes; none if `count` is not above 0 or there is no array.
    HuffmanBuffer(const void* bytes, std::int32_t count);

    // The uncompressed data. Bytes that are no compressed stream come back as they are, and so does
    // a stream that cannot be one: its table is cut, its size is negative, it has no symbols but a
    // size, or a lone symbol beyond the limit. If the coded data ends early, the result does too.
    // The table's order and its frequencies are taken as they stand. With more than one symbol the
    // result has at most 8 bytes for each byte held.
    std::vector<std::uint8_t> Decompress() const;

    // What a packed element holds: the data up to the first NUL, or all of it where there is none.
    // A lone symbol spells no element, however often it is repeated, and gives the empty text. So
    // the text never has more than 8 bytes for each byte held, and all packed elements of a file
    // together unfold to no more than that multiple of it; a writer comes near it with a long run
    // of one byte ahead of the closing NUL.
    std::string Text() const;

  private:
    std::vector<std::uint8_t> bytes_;
};
