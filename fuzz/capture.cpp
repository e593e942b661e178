#include <sstream>
#include <string>
#include <variant>

#include "fuzzed.h"
#include "replay_core/motion/read_motion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream{std::string(AsText(data, size))};
    const auto result = replay::ReadMotion(stream, "input");
    if (const auto* error = std::get_if<replay::ReadError>(&result))
        Require(replay::Describe(*error).find('\n') == std::string::npos);
    return 0;
}
