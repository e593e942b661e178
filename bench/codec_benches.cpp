// State on its way to and from its stored form: trees and their text, base64, the Huffman code. An
// operation is a kilobyte of text or of plain data. The peers stand in bench/peers/.

#include <benchmark/benchmark.h>

#include "bench/meter.h"
#include "bench/texts.h"
#include "replay_core/state/compress.h"
#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"
#include "tvl/xml_node.h"

namespace {

std::int64_t Kilobytes(std::size_t bytes) {
    return static_cast<std::int64_t>(bytes) / kBytesInKilobyte;
}

std::size_t SizeOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void StateSizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(1'000'000)->Arg(10'000'000);
}

void Parse(benchmark::State& state) {
    const std::string text = StateOf(SizeOf(state));
    Meter meter(state, Kilobytes(text.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(XMLNode(text));
}

// The least that a tree of so many strings can cost.
void CopyAndFree(benchmark::State& state) {
    const std::string text = StateOf(SizeOf(state));
    const XMLNode tree(text);
    Meter meter(state, Kilobytes(text.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(XMLNode(tree));
}

void Write(benchmark::State& state, const std::string& text) {
    const XMLNode tree(text);
    if (tree.Write() != text) state.SkipWithError("written otherwise than read");
    Meter meter(state, Kilobytes(text.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(tree.Write());
}

void WriteState(benchmark::State& state) {
    Write(state, StateOf(SizeOf(state)));
}
void WriteTexts(benchmark::State& state) {
    Write(state, LongTextsOf(SizeOf(state)));
}

void Encode(benchmark::State& state) {
    const std::vector<std::uint8_t> noise = NoiseOf(kPlainBytes);
    const Base64Buffer buffer(noise.data(), static_cast<std::int32_t>(noise.size()));
    Meter meter(state, Kilobytes(noise.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(buffer.ToText());
}

void Decode(benchmark::State& state) {
    const std::vector<std::uint8_t> noise = NoiseOf(kPlainBytes);
    const Base64Buffer buffer(noise.data(), static_cast<std::int32_t>(noise.size()));
    const std::string text = buffer.ToText();
    Meter meter(state, Kilobytes(noise.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(Base64Buffer(text));
}

void Decompress(benchmark::State& state, const std::string& plain) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(plain.data());
    const std::vector<std::uint8_t> stream = *replay::Compress({bytes, plain.size()});
    const HuffmanBuffer buffer(stream.data(), static_cast<std::int32_t>(stream.size()));
    Meter meter(state, Kilobytes(plain.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(buffer.Decompress());
}

void DecompressProse(benchmark::State& state) {
    Decompress(state, ProseOf(kPlainBytes));
}
void DecompressNumbers(benchmark::State& state) {
    Decompress(state, NumbersOf(kPlainBytes));
}
void DecompressState(benchmark::State& state) {
    Decompress(state, StateOf(kPlainBytes));
}

BENCHMARK(Parse)->Name("XML parse, a kB/ours")->Apply(StateSizes);
BENCHMARK(CopyAndFree)->Name("XML parse, a kB/copy and free")->Apply(StateSizes);
BENCHMARK(WriteState)->Name("XML write of state, a kB/ours")->Apply(StateSizes);
BENCHMARK(WriteTexts)->Name("XML write of texts, a kB/ours")->Apply(StateSizes);
BENCHMARK(Encode)->Name("base64 encode, a kB/ours");
BENCHMARK(Decode)->Name("base64 decode, a kB/ours");
BENCHMARK(DecompressProse)->Name("Huffman decode of prose, a kB/ours");
BENCHMARK(DecompressNumbers)->Name("Huffman decode of numbers, a kB/ours");
BENCHMARK(DecompressState)->Name("Huffman decode of XML, a kB/ours");

}  // namespace
