// The text of a tree, read by tinyxml2.

#include <tinyxml2.h>

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

void Parse(benchmark::State& state, const std::string& text) {
    tinyxml2::XMLDocument whole;
    whole.Parse(text.data(), text.size());
    if (!IsSame(XMLNode(text), whole.RootElement())) state.SkipWithError("another tree");
    MeasureText(state, text,
                [&] { return tinyxml2::XMLDocument().Parse(text.data(), text.size()); });
}

const bool isRegistered = Register(kParse, "tinyxml2", Parse);

}  // namespace
