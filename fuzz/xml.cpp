#include "fuzz/fuzzed.h"
#include "tests/xml/plain_xml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(AsText(data, size));
    XMLNode node;
    XMLNode plain;
    Require(node.Parse(text) == plain::Parse(plain, text));
    Require(plain::Shape(node) == plain::Shape(plain));
    const XMLNode copy = node;
    Require(copy.Write() == node.Write());
    const std::string readable = copy.Write("\n", "\t");
    Require(readable == plain::Write(copy, "\n", "\t", ""));
    node.Parse(readable);
    return 0;
}
