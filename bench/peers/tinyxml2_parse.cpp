// The text of a tree, read by tinyxml2.

#include <benchmark/benchmark.h>
#include <tinyxml2.h>

#include "bench/meter.h"
#include "bench/texts.h"
#include "tvl/xml_node.h"

namespace {

// Whether both trees have the same elements with the same attributes.
bool IsSame(const XMLNode& ours, const tinyxml2::XMLElement* theirs) {
    if (!theirs || ours.name != theirs->Name()) return false;
    std::size_t attributes = 0;
    for (auto* one = theirs->FirstAttribute(); one; one = one->Next(), ++attributes) {
        const auto found = ours.attributes.find(one->Name());
        if (found == ours.attributes.end() || found->second != one->Value()) return false;
    }
    if (attributes != ours.attributes.size()) return false;
    const tinyxml2::XMLElement* child = theirs->FirstChildElement();
    for (const auto& node : ours.children) {
        if (!IsSame(*node, child)) return false;
        child = child->NextSiblingElement();
    }
    return !child;
}

void Parse(benchmark::State& state) {
    const std::string text = StateOf(static_cast<std::size_t>(state.range(0)));
    tinyxml2::XMLDocument whole;
    whole.Parse(text.data(), text.size());
    if (!IsSame(XMLNode(text), whole.RootElement())) state.SkipWithError("another tree");
    Meter meter(state, static_cast<std::int64_t>(text.size()) / kBytesInKilobyte);
    for (auto _ : state) {
        tinyxml2::XMLDocument document;
        benchmark::DoNotOptimize(document.Parse(text.data(), text.size()));
    }
}

BENCHMARK(Parse)->Name("XML parse, a kB/tinyxml2")->Arg(1'000'000)->Arg(10'000'000);

}  // namespace
