#include "tvl/huffman_buffer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

#include "codecs/huffman_looks.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

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
    return DecodeHuffman(tree, Bytes(bytes_).subspan(kHeaderBytes + tableBytes), header->size);
}

std::string HuffmanBuffer::Text() const {
    const std::optional<StreamHeader> header = ReadHeader(bytes_);
    if (header && header->symbols == 1) return {};
    const std::vector<std::uint8_t> data = Decompress();
    return std::string(data.begin(), std::ranges::find(data, std::uint8_t{0}));
}
