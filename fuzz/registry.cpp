#include "fuzz/fuzzed.h"
#include "platform/common/reg_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const platform::RegFile file = platform::ParseRegFile(AsText(data, size));
    for (const auto& [path, key] : file.keys)
        Require(file.HasKey(path));
    return 0;
}
