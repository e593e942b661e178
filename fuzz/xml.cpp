#include "fuzz/fuzzed.h"
#include "tvl/xml_node.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    XMLNode node;
    node.Parse(AsText(data, size));
    const XMLNode copy = node;
    Require(copy.Write() == node.Write());
    node.Parse(copy.Write("\n", "\t"));
    return 0;
}
