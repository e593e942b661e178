// State on its way to and from its stored form: trees and their text, base64, the Huffman code. The
// peers stand in bench/peers/.

#include "bench/texts.h"
#include "replay_core/state/compress.h"
#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"
#include "tvl/xml_node.h"

namespace {

void Parse(benchmark::State& state, const std::string& text) {
    MeasureText(state, text, [&] { return XMLNode(text); });
}

// The least that a tree of so many strings can cost.
void CopyAndFree(benchmark::State& state, const std::string& text) {
    const XMLNode tree(text);
    if (XMLNode(tree).Write() != text) state.SkipWithError("another tree");
    MeasureText(state, text, [&] { return XMLNode(tree); });
}

void Write(benchmark::State& state, const std::string& text) {
    const XMLNode tree(text);
    if (tree.Write() != text) state.SkipWithError("written otherwise than read");
    MeasureText(state, text, [&] { return tree.Write(); });
}

Base64Buffer BufferOf(const std::string& plain) {
    return {BytesOf(plain), static_cast<std::int32_t>(plain.size())};
}

void Encode(benchmark::State& state, const std::string& plain) {
    const Base64Buffer buffer = BufferOf(plain);
    MeasureText(state, plain, [&] { return buffer.ToText(); });
}

void Decode(benchmark::State& state, const std::string& plain) {
    const std::string text = BufferOf(plain).ToText();
    if (!AreBytesOf(plain, Base64Buffer(text).Bytes())) state.SkipWithError("other bytes");
    MeasureText(state, plain, [&] { return Base64Buffer(text); });
}

void Decompress(benchmark::State& state, const std::string& plain) {
    const std::vector<std::uint8_t> stream = *replay::Compress({BytesOf(plain), plain.size()});
    const HuffmanBuffer buffer(stream.data(), static_cast<std::int32_t>(stream.size()));
    if (!AreBytesOf(plain, buffer.Decompress())) state.SkipWithError("other bytes");
    MeasureText(state, plain, [&] { return buffer.Decompress(); });
}

const bool codecsAreRegistered =
    Register(kParse, "ours", Parse) && Register(kParse, "copy and free", CopyAndFree) &&
    Register(kWrite, "ours", Write) && Register(kEncode, "ours", Encode) &&
    Register(kDecode, "ours", Decode) && Register(kDecompress, "ours", Decompress);

}  // namespace
