#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tvl/xml_node.h"

namespace replay {

// The compressed stream that HuffmanBuffer::Decompress turns back into the data, of which there are
// at most 2^31 - 1 bytes. No data gives a stream of no symbols.
std::vector<std::uint8_t> Compress(std::span<const std::uint8_t> data);

// What an element with the attribute `compressed` of "1" holds as its only text in place of
// `element`: the base64 form of the compressed stream of the element's compact text, with the NUL
// byte that ends it.
std::string PackedText(const XMLNode& element);

}  // namespace replay
