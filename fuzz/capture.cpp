#include <sstream>
#include <string>
#include <variant>

#include "fuzz/fuzzed.h"
#include "replay_core/motion/read_motion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using enum replay::CutCapture;
    for (const replay::CutCapture cut : {kRefused, kTaken}) {
        std::istringstream stream{std::string(AsText(data, size))};
        const auto result = replay::ReadMotion(stream, "input", cut);
        if (const auto* error = std::get_if<replay::ReadError>(&result))
            Require(replay::Describe(*error).find('\n') == std::string::npos);
        else
            Require(std::get<replay::Motion>(result).oddity.find('\n') == std::string::npos);
    }
    return 0;
}
