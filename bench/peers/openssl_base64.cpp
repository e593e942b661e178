// Base64 by OpenSSL's EVP, into new memory each time, as ours.

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <memory>

#include "bench/meter.h"
#include "bench/texts.h"
#include "tvl/base64_buffer.h"

namespace {

using Block = std::unique_ptr<unsigned char[]>;

Block Encoded(const std::vector<std::uint8_t>& plain, int& size) {
    Block text = std::make_unique_for_overwrite<unsigned char[]>(plain.size() / 3 * 4 + 5);
    size = EVP_EncodeBlock(text.get(), plain.data(), static_cast<int>(plain.size()));
    return text;
}

Block Decoded(const std::string& text) {
    Block plain = std::make_unique_for_overwrite<unsigned char[]>(text.size() / 4 * 3);
    EVP_DecodeBlock(plain.get(), reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
    return plain;
}

std::string OurText(const std::vector<std::uint8_t>& plain) {
    return Base64Buffer(plain.data(), static_cast<std::int32_t>(plain.size())).ToText();
}

void Encode(benchmark::State& state) {
    const std::vector<std::uint8_t> noise = NoiseOf(kPlainBytes);
    int size = 0;
    const Block text = Encoded(noise, size);
    if (OurText(noise) != std::string(text.get(), text.get() + size))
        state.SkipWithError("another text");
    Meter meter(state, kPlainBytes / kBytesInKilobyte);
    for (auto _ : state)
        benchmark::DoNotOptimize(Encoded(noise, size));
}

void Decode(benchmark::State& state) {
    const std::vector<std::uint8_t> noise = NoiseOf(kPlainBytes);
    const std::string text = OurText(noise);
    const Block plain = Decoded(text);
    if (!std::equal(noise.begin(), noise.end(), plain.get())) state.SkipWithError("other bytes");
    Meter meter(state, kPlainBytes / kBytesInKilobyte);
    for (auto _ : state)
        benchmark::DoNotOptimize(Decoded(text));
}

BENCHMARK(Encode)->Name("base64 encode, a kB/EVP");
BENCHMARK(Decode)->Name("base64 decode, a kB/EVP");

}  // namespace
