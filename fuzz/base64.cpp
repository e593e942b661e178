#include "fuzz/fuzzed.h"
#include "tests/codecs/plain_codecs.h"
#include "tvl/base64_buffer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Base64Buffer decoded(std::string(AsText(data, size)));
    Require(decoded.Bytes() == plain::FromBase64(AsText(data, size)));
    Require(Base64Buffer(decoded.ToText()).Bytes() == decoded.Bytes());
    Require(Base64Buffer(Base64Buffer(data, static_cast<std::int32_t>(size)).ToText()).Bytes() ==
            std::vector<std::uint8_t>(data, data + size));
    return 0;
}
