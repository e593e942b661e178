// A tree written by pugixml, to the same bytes.

#include <benchmark/benchmark.h>

#include <pugixml.hpp>

#include "bench/meter.h"
#include "bench/texts.h"

namespace {

struct StringWriter final : pugi::xml_writer {
    void write(const void* bytes, std::size_t size) override {
        text.append(static_cast<const char*>(bytes), size);
    }
    std::string text;
};

std::string Written(const pugi::xml_document& document) {
    StringWriter writer;
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
    return std::move(writer.text);
}

void Write(benchmark::State& state, const std::string& text) {
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size());
    if (Written(document) != text) state.SkipWithError("another text");
    Meter meter(state, static_cast<std::int64_t>(text.size()) / kBytesInKilobyte);
    for (auto _ : state)
        benchmark::DoNotOptimize(Written(document));
}

void WriteState(benchmark::State& state) {
    Write(state, StateOf(static_cast<std::size_t>(state.range(0))));
}
void WriteTexts(benchmark::State& state) {
    Write(state, LongTextsOf(static_cast<std::size_t>(state.range(0))));
}

BENCHMARK(WriteState)->Name("XML write of state, a kB/pugixml")->Arg(1'000'000)->Arg(10'000'000);
BENCHMARK(WriteTexts)->Name("XML write of texts, a kB/pugixml")->Arg(1'000'000)->Arg(10'000'000);

}  // namespace
