#include "codecs/huffman_looks.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using Bytes = std::span<const std::uint8_t>;

// Of 8 bytes read from the byte in which a bit stands, 57 bits at least are from there on.
constexpr std::size_t kLookBits = 11;
constexpr std::size_t kLooks = 1U << kLookBits;
constexpr std::size_t kLooksPerRead = 5;
constexpr std::size_t kMostInLook = 6;
constexpr std::size_t kMostPerRead = kLooksPerRead * kMostInLook;

// Below this number of bytes the table costs more than it saves.
constexpr std::size_t kWorthATable = 1024;

// What the next bits begin with.
struct Look {
    std::array<std::uint8_t, kMostInLook> symbols{};
    std::uint8_t count = 0;  // of symbols; 0 if the first takes more bits than a look has
    std::uint8_t bits = 0;   // that these symbols take
};

using Table = std::vector<Look>;

class BitReader {
  public:
    explicit BitReader(Bytes coded) : bytes(coded) {}

    bool IsAtEnd() const { return at == bytes.size() * kBitsPerByte; }
    bool HasWord() const { return at / kBitsPerByte + sizeof(std::uint64_t) <= bytes.size(); }

    // The next 57 bits or more, the first of them lowest.
    std::uint64_t Word() const {
        const std::uint8_t* const from = &bytes[at / kBitsPerByte];
        // Spelled out, it is one load of eight bytes.
        const std::uint64_t word = std::uint64_t{from[0]} | std::uint64_t{from[1]} << 8 |
                                   std::uint64_t{from[2]} << 16 | std::uint64_t{from[3]} << 24 |
                                   std::uint64_t{from[4]} << 32 | std::uint64_t{from[5]} << 40 |
                                   std::uint64_t{from[6]} << 48 | std::uint64_t{from[7]} << 56;
        return word >> at % kBitsPerByte;
    }

    void Skip(std::size_t bits) { at += bits; }

    bool Take() {
        const bool bit = bytes[at / kBitsPerByte] >> at % kBitsPerByte & 1;
        ++at;
        return bit;
    }

  private:
    Bytes bytes;
    std::size_t at = 0;  // in bits
};

// Walks to the next leaf and gives its record; null if the data ends on the way.
const HuffmanRecord* WalkToLeaf(std::span<const HuffmanRecord> tree, BitReader& bits) {
    const HuffmanRecord* node = &tree.back();
    while (node->left >= 0) {
        if (bits.IsAtEnd()) return nullptr;
        node = &tree[static_cast<std::size_t>(bits.Take() ? node->right : node->left)];
    }
    return node;
}

// Enters the leaves below a node that is reached by the `depth` bits of `way`: each stands wherever
// its code is followed by whatever bits.
void EnterLeaves(std::span<const HuffmanRecord> tree, std::int32_t index, std::size_t way,
                 std::size_t depth, Table& table) {
    const HuffmanRecord& node = tree[static_cast<std::size_t>(index)];
    if (node.left < 0) {
        const Look look = {
            {static_cast<std::uint8_t>(node.symbol)}, 1, static_cast<std::uint8_t>(depth)};
        for (std::size_t at = way; at < table.size(); at += std::size_t{1} << depth)
            table[at] = look;
    } else if (depth < kLookBits) {
        EnterLeaves(tree, node.left, way, depth + 1, table);
        EnterLeaves(tree, node.right, way | std::size_t{1} << depth, depth + 1, table);
    }
}

Table MakeTable(std::span<const HuffmanRecord> tree) {
    Table single(kLooks);
    EnterLeaves(tree, static_cast<std::int32_t>(tree.size()) - 1, 0, 0, single);
    Table table = single;
    for (std::size_t way = 0; way < table.size(); ++way) {
        Look& look = table[way];
        while (look.count > 0 && look.count < kMostInLook) {
            // What is shifted in is no part of the data, so that only a code that ends before it is
            // one.
            const Look& next = single[way >> look.bits];
            if (next.count == 0 || look.bits + next.bits > int{kLookBits}) break;
            look.symbols[look.count++] = next.symbols[0];
            look.bits = static_cast<std::uint8_t>(look.bits + next.bits);
        }
    }
    return table;
}

// Symbols on their way to the end of the result, whose memory is thus written once.
class Gathered {
  public:
    explicit Gathered(std::vector<std::uint8_t>& wholeResult) : result(wholeResult) {}

    std::size_t Size() const { return result.size() + count; }

    // Room for the symbols of one read.
    std::uint8_t* Room() {
        if (count + kMostPerRead > symbols.size()) Flush();
        return &symbols[count];
    }
    void TakeUpTo(const std::uint8_t* end) {
        count = static_cast<std::size_t>(end - symbols.data());
    }

    void Flush() {
        result.insert(result.end(), symbols.data(), symbols.data() + count);
        count = 0;
    }

  private:
    std::vector<std::uint8_t>& result;
    std::array<std::uint8_t, 4096> symbols;
    std::size_t count = 0;
};

// Decodes as long as there are whole words of data and room for all that one can hold.
void DecodeByLooks(std::span<const HuffmanRecord> tree, BitReader& bits, std::size_t size,
                   std::vector<std::uint8_t>& result) {
    const Table table = MakeTable(tree);
    Gathered gathered(result);
    while (bits.HasWord() && gathered.Size() + kMostPerRead <= size) {
        std::uint8_t* to = gathered.Room();
        std::uint64_t word = bits.Word();
        std::size_t taken = 0;
        const Look* look = nullptr;
        for (std::size_t i = 0; i < kLooksPerRead; ++i) {
            look = &table[word % kLooks];
            std::memcpy(to, look->symbols.data(), kMostInLook);
            to += look->count;
            taken += look->bits;
            word >>= look->bits;
        }
        bits.Skip(taken);
        gathered.TakeUpTo(to);
        if (look->count > 0) continue;
        const HuffmanRecord* const leaf = WalkToLeaf(tree, bits);
        if (leaf == nullptr) break;
        *to = static_cast<std::uint8_t>(leaf->symbol);
        gathered.TakeUpTo(to + 1);
    }
    gathered.Flush();
}

}  // namespace

std::vector<std::uint8_t> DecodeHuffman(std::span<const HuffmanRecord> tree, Bytes coded,
                                        std::size_t size) {
    std::vector<std::uint8_t> result;
    result.reserve(std::min(size, coded.size() * kBitsPerByte));
    BitReader bits(coded);
    if (coded.size() >= kWorthATable) DecodeByLooks(tree, bits, size, result);
    while (result.size() < size) {
        const HuffmanRecord* const leaf = WalkToLeaf(tree, bits);
        if (leaf == nullptr) break;
        result.push_back(static_cast<std::uint8_t>(leaf->symbol));
    }
    return result;
}
