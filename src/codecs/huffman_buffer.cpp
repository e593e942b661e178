#include "tvl/huffman_buffer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kBitsPerByte = 8;

struct StreamHeader {
    std::size_t symbols;
    std::size_t size;  // of the uncompressed data in bytes
};

std::uint32_t ReadNumber(Bytes bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number |= std::uint32_t{bytes[at + i]} << (kBitsPerByte * i);
    return number;
}

// None if the bytes are no stream, or one that cannot be decoded.
std::optional<StreamHeader> ReadHeader(Bytes bytes) {
    if (bytes.size() < HuffmanBuffer::kHeaderBytes) return std::nullopt;
    if (ReadNumber(bytes, 0) != HuffmanBuffer::kMagic) return std::nullopt;
    if (ReadNumber(bytes, 4) != HuffmanBuffer::kFormat) return std::nullopt;
    const StreamHeader header = {ReadNumber(bytes, 8), ReadNumber(bytes, 12)};
    if (header.symbols > HuffmanBuffer::kMostSymbols) return std::nullopt;
    if (header.size == 0) return header;

    const std::size_t room = bytes.size() - HuffmanBuffer::kHeaderBytes;
    if (header.symbols == 0 || room < header.symbols * HuffmanBuffer::kEntryBytes)
        return std::nullopt;
    constexpr auto kMostBytes = std::size_t{std::numeric_limits<std::int32_t>::max()};
    constexpr auto kMostAlone = std::size_t{HuffmanBuffer::kMostLoneSymbols};
    if (header.size > (header.symbols == 1 ? kMostAlone : kMostBytes)) return std::nullopt;
    return header;
}

std::vector<HuffmanRecord> ReadTree(Bytes table) {
    constexpr std::uint32_t kMostFrequent = std::numeric_limits<std::int32_t>::max();
    std::vector<HuffmanRecord> records;
    records.reserve(table.size() / HuffmanBuffer::kEntryBytes * 2);
    for (std::size_t at = 0; at < table.size(); at += HuffmanBuffer::kEntryBytes) {
        HuffmanRecord leaf;
        leaf.symbol = table[at];
        leaf.frequency =
            static_cast<std::int32_t>(std::min(ReadNumber(table, at + 1), kMostFrequent));
        records.push_back(leaf);
    }
    BuildHuffmanTree(records);
    return records;
}

// Walks a tree of more than one leaf, where every symbol takes a bit at least.
std::vector<std::uint8_t> Decode(std::span<const HuffmanRecord> tree, Bytes coded,
                                 std::size_t size) {
    std::vector<std::uint8_t> result;
    result.reserve(std::min(size, coded.size() * kBitsPerByte));
    const HuffmanRecord* node = &tree.back();
    for (const std::uint8_t byte : coded) {
        for (std::size_t bit = 0; bit < kBitsPerByte && result.size() < size; ++bit) {
            const bool isRight = byte >> bit & 1;
            node = &tree[static_cast<std::size_t>(isRight ? node->right : node->left)];
            if (node->left >= 0) continue;
            result.push_back(static_cast<std::uint8_t>(node->symbol));
            node = &tree.back();
        }
        if (result.size() == size) break;
    }
    return result;
}

}  // namespace

HuffmanBuffer::HuffmanBuffer(const void* bytes, std::int32_t count) {
    if (!bytes || count <= 0) return;
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    bytes_.assign(first, first + count);
}

std::vector<std::uint8_t> HuffmanBuffer::Decompress() const {
    const std::optional<StreamHeader> header = ReadHeader(bytes_);
    if (!header) return bytes_;
    if (header->size == 0) return {};

    const std::size_t tableBytes = header->symbols * kEntryBytes;
    const std::vector<HuffmanRecord> tree =
        ReadTree(Bytes(bytes_).subspan(kHeaderBytes, tableBytes));
    if (tree.size() == 1)
        return std::vector<std::uint8_t>(header->size, static_cast<std::uint8_t>(tree[0].symbol));
    return Decode(tree, Bytes(bytes_).subspan(kHeaderBytes + tableBytes), header->size);
}

std::string HuffmanBuffer::Text() const {
    const std::optional<StreamHeader> header = ReadHeader(bytes_);
    if (header && header->symbols == 1) return {};
    const std::vector<std::uint8_t> data = Decompress();
    return std::string(data.begin(), std::ranges::find(data, std::uint8_t{0}));
}
