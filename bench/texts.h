#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "bench/meter.h"

// What the codecs work on, of about as many bytes as asked for, the same on every run.

std::string ProseOf(std::size_t bytes);

// Lines of decimal numbers, as captures and curves have them.
std::string NumbersOf(std::size_t bytes);

// A Core's state in the writer's compact form: takes with nodes of many attributes each, in the
// order in which a tree keeps them, and nothing in them that is written as a reference.
std::string StateOf(std::size_t bytes);

// Elements that hold a long text each.
std::string LongTextsOf(std::size_t bytes);

// Bytes without any order.
std::string NoiseOf(std::size_t bytes);

inline const std::uint8_t* BytesOf(const std::string& text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

// Whether a decoder gave the text again.
inline bool AreBytesOf(const std::string& text, std::span<const std::uint8_t> bytes) {
    return std::ranges::equal(std::span(BytesOf(text), text.size()), bytes);
}

// A work on a text, at a megabyte, or at that and ten.
struct TextWork {
    const char* name;
    std::string (*textOf)(std::size_t bytes);
    std::int64_t mostBytes = 1'000'000;
};

inline constexpr TextWork kParse[] = {{"XML parse, a kB", StateOf, 10'000'000}};
inline constexpr TextWork kWrite[] = {{"XML write of state, a kB", StateOf, 10'000'000},
                                      {"XML write of texts, a kB", LongTextsOf, 10'000'000}};
inline constexpr TextWork kEncode[] = {{"base64 encode, a kB", NoiseOf}};
inline constexpr TextWork kDecode[] = {{"base64 decode, a kB", NoiseOf}};
inline constexpr TextWork kDecompress[] = {{"Huffman decode of prose, a kB", ProseOf},
                                           {"Huffman decode of numbers, a kB", NumbersOf},
                                           {"Huffman decode of XML, a kB", StateOf}};

using TextBenchmark = void (*)(benchmark::State&, const std::string& text);

// Adds what `who` does for each of the works.
bool Register(std::span<const TextWork> works, const char* who, TextBenchmark run);

// An operation is a kilobyte of the text.
void MeasureText(benchmark::State& state, const std::string& text, auto work) {
    constexpr std::size_t kBytesInKilobyte = 1000;
    MeasureRepeated(state, static_cast<std::int64_t>(text.size() / kBytesInKilobyte), work);
}
