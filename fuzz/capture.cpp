#include <cmath>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "fuzz/fuzzed.h"
#include "replay_core/motion/pose.h"
#include "replay_core/motion/read_motion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using enum replay::CutCapture;
    for (const replay::CutCapture cut : {kRefused, kTaken}) {
        std::istringstream stream{std::string(AsText(data, size))};
        const auto result = replay::ReadMotion(stream, "input", cut);
        if (const auto* error = std::get_if<replay::ReadError>(&result)) {
            Require(replay::Describe(*error).find('\n') == std::string::npos);
            continue;
        }
        const auto& motion = std::get<replay::Motion>(result);
        Require(motion.oddity.find('\n') == std::string::npos);
        Require(motion.values.size() == motion.frameCount * motion.channelCount);
        std::vector<TVL::CMatrix4> world(motion.joints.size());
        replay::EvaluatePose(motion, motion.frameCount - 1, replay::kCmuMetresPerUnit, world);
        for (const TVL::CMatrix4& joint : world)
            Require(std::isfinite(joint[3][0] + joint[3][1] + joint[3][2]));
    }
    return 0;
}
