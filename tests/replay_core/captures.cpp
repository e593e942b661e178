#include "tests/replay_core/captures.h"

#include <gtest/gtest.h>

#include <sstream>
#include <variant>

#include "replay_core/motion/read_motion.h"

namespace {

std::variant<replay::Motion, replay::ReadError> Read(std::string_view text,
                                                     replay::CutCapture cut) {
    std::istringstream stream{std::string(text)};
    return replay::ReadMotion(stream, "step.bvh", cut);
}

}  // namespace

replay::Motion ReadWhole(std::string_view text) {
    auto result = Read(text, replay::CutCapture::kRefused);
    const auto* const error = std::get_if<replay::ReadError>(&result);
    EXPECT_FALSE(error) << replay::Describe(*error);
    return error ? replay::Motion() : std::get<replay::Motion>(std::move(result));
}

std::string Reading(std::string_view text, replay::CutCapture cut) {
    const auto result = Read(text, cut);
    if (const auto* const error = std::get_if<replay::ReadError>(&result))
        return replay::Describe(*error);
    const auto& motion = std::get<replay::Motion>(result);
    EXPECT_EQ(motion.values.size(), motion.frameCount * motion.channelCount);
    return std::to_string(motion.frameCount) + " frames; " + motion.oddity;
}

std::string Replaced(std::string_view text, std::string_view from, std::string_view to) {
    const std::size_t place = text.find(from);
    EXPECT_TRUE(place != std::string_view::npos && text.find(from, place + 1) == std::string::npos)
        << "not there exactly once: " << from;
    return std::string(text).replace(place, from.size(), to);
}

std::string Told(const replay::Motion& motion) {
    std::ostringstream out;
    const auto place = [&out](const std::array<double, 3>& offset) {
        out << " (" << offset[0] << ' ' << offset[1] << ' ' << offset[2] << ')';
    };
    for (const replay::Joint& joint : motion.joints) {
        out << joint.name << " below "
            << (joint.parent == replay::kNoJoint ? "none" : motion.joints[joint.parent].name);
        place(joint.offset);
        out << ' ' << joint.firstChannel << ':';
        for (const replay::Channel channel : joint.channels)
            out << static_cast<int>(channel);
        out << "; ";
    }
    for (const replay::EndSite& end : motion.endSites) {
        out << "end of " << motion.joints[end.joint].name;
        place(end.offset);
        out << "; ";
    }
    out << motion.frameCount << " of " << motion.channelCount << " each " << motion.frameSeconds;
    for (const double value : motion.values)
        out << ' ' << value;
    return out.str();
}
