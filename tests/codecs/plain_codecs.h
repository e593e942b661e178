#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tvl/huffman_buffer.h"

// Both codecs as they are defined, a group or a bit at a time: the law that the fast ones are held
// to.
namespace plain {

using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline std::string ToBase64(const Bytes& bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i)
            bits = bits << 8 | (at + i < bytes.size() ? bytes[at + i] : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += at + i <= bytes.size() ? kAlphabet[bits >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

inline Bytes FromBase64(std::string_view text) {
    Bytes bytes;
    if (text.size() % 4 != 0) return {};
    for (; !text.empty(); text.remove_prefix(4)) {
        const std::size_t count = text[3] != '=' ? 3 : text[2] != '=' ? 2 : 1;
        std::size_t bits = 0;
        for (std::size_t i = 0; i <= count; ++i) {
            const std::size_t value = kAlphabet.find(text[i]);
            if (value == std::string_view::npos) return {};
            bits |= value << (18 - 6 * i);
        }
        for (std::size_t i = 0; i < count; ++i)
            bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * i)));
    }
    return bytes;
}

// What the coded data of more than one symbol holds, as far as there is any.
inline Bytes Walk(std::vector<HuffmanRecord> leaves, const Bytes& coded, std::size_t size) {
    BuildHuffmanTree(leaves);
    Bytes result;
    const HuffmanRecord* node = &leaves.back();
    for (std::size_t bit = 0; bit < coded.size() * 8 && result.size() < size; ++bit) {
        const bool isRight = coded[bit / 8] >> (bit % 8) & 1;
        node = &leaves[static_cast<std::size_t>(isRight ? node->right : node->left)];
        if (node->left >= 0) continue;
        result.push_back(static_cast<std::uint8_t>(node->symbol));
        node = &leaves.back();
    }
    return result;
}

}  // namespace plain
