#include "replay_core/state/compress.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "tvl/base64_buffer.h"

namespace replay {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kByteValues = 256;

// The bits of a byte value, from the root down to its leaf.
using Code = std::vector<bool>;
using Codes = std::array<Code, kByteValues>;

void AppendNumber(std::vector<std::uint8_t>& stream, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        stream.push_back(static_cast<std::uint8_t>(number >> shift));
}

// The byte values that occur, ascending by frequency and then by value.
std::vector<HuffmanRecord> CountLeaves(Bytes data) {
    std::array<HuffmanRecord, kByteValues> counts;
    for (const std::uint8_t byte : data) {
        counts[byte].symbol = byte;
        ++counts[byte].frequency;
    }
    std::vector<HuffmanRecord> leaves;
    std::ranges::copy_if(counts, std::back_inserter(leaves),
                         [](const HuffmanRecord& leaf) { return leaf.frequency > 0; });
    std::ranges::stable_sort(leaves, {}, &HuffmanRecord::frequency);
    return leaves;
}

// Climbs from each leaf to the root.
Codes CodesOf(std::span<const HuffmanRecord> tree) {
    const auto at = [&](std::int32_t index) -> const HuffmanRecord& {
        return tree[static_cast<std::size_t>(index)];
    };
    Codes codes;
    for (std::int32_t leaf = 0; leaf < std::ssize(tree); ++leaf) {
        if (at(leaf).left >= 0) continue;
        Code& code = codes[static_cast<std::size_t>(at(leaf).symbol)];
        for (std::int32_t node = leaf; at(node).parent >= 0; node = at(node).parent)
            code.push_back(at(at(node).parent).right == node);
        std::reverse(code.begin(), code.end());
    }
    return codes;
}

void AppendHeader(std::vector<std::uint8_t>& stream, std::span<const HuffmanRecord> leaves,
                  std::size_t size) {
    AppendNumber(stream, HuffmanBuffer::kMagic);
    AppendNumber(stream, HuffmanBuffer::kFormat);
    AppendNumber(stream, static_cast<std::uint32_t>(leaves.size()));
    AppendNumber(stream, static_cast<std::uint32_t>(size));
    for (const HuffmanRecord& leaf : leaves) {
        stream.push_back(static_cast<std::uint8_t>(leaf.symbol));
        AppendNumber(stream, static_cast<std::uint32_t>(leaf.frequency));
    }
}

void AppendCoded(std::vector<std::uint8_t>& stream, Bytes data, const Codes& codes) {
    int bitsOfLast = 8;
    for (const std::uint8_t byte : data) {
        for (const bool bit : codes[byte]) {
            if (bitsOfLast == 8) {
                stream.push_back(0);
                bitsOfLast = 0;
            }
            stream.back() = static_cast<std::uint8_t>(stream.back() | bit << bitsOfLast);
            ++bitsOfLast;
        }
    }
}

}  // namespace

std::optional<std::vector<std::uint8_t>> Compress(Bytes data) {
    if (data.size() > kMostCompressedData) return std::nullopt;
    std::vector<HuffmanRecord> records = CountLeaves(data);
    std::vector<std::uint8_t> stream;
    AppendHeader(stream, records, data.size());
    BuildHuffmanTree(records);
    AppendCoded(stream, data, CodesOf(records));
    return stream;
}

std::optional<std::string> PackedText(const std::string& plain) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(plain.c_str());
    const std::optional<std::vector<std::uint8_t>> stream = Compress({bytes, plain.size() + 1});
    if (!stream) return std::nullopt;
    return Base64Buffer(stream->data(), static_cast<std::int32_t>(stream->size())).ToText();
}

}  // namespace replay
